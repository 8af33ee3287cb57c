#include "host/film/film_writer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>

#include "host/errors.h"
#include "host/film/library_log.h"
#include "host/film/video_encoder.h"
#include "host/words.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/mathematics.h>
}

namespace clarivex {

namespace {

namespace files = std::filesystem;

const AVOutputFormat& ContainerOf(const std::string& path) {
    const AVOutputFormat* const container = av_guess_format(nullptr, path.c_str(), nullptr);
    if (!container || (container->flags & AVFMT_NOFILE) != 0)
        throw RunError("its name tells of no kind of film; name a .mkv, .mp4, .mov, .webm or .y4m file");
    return *container;
}

/// Whether a film without its last bytes cannot be played.
bool NeedsItsEnd(const AVOutputFormat& container) {
    constexpr std::array<std::string_view, 8> names = {"mp4", "mov", "3gp", "3g2", "ipod", "psp", "f4v", "mxf"};
    return std::find(names.begin(), names.end(), container.name) != names.end();
}

}  // namespace

void FilmWriter::OutputDeleter::operator()(AVFormatContext* context) const {
    if (context->pb) avio_closep(&context->pb);
    avformat_free_context(context);
}

FilmWriter::FilmWriter(const FilmTarget& target, Report& report)
    : path(target.path),
      part{target.path + ".part"},
      givenSize(target.info.size),
      fullHeightChroma(target.fullHeightChroma),
      origin(target.info.origin) {
    CatchLibraryLog();
    const AVOutputFormat& container = ContainerOf(path);
    ClaimPath(target.overwrite);
    AVFormatContext* made = nullptr;
    if (avformat_alloc_output_context2(&made, &container, nullptr, nullptr) < 0) throw std::bad_alloc();
    output.reset(made);
    encoder = OpenVideoEncoder(target, container);
    AddPictures(target);
    if (Size() != givenSize)
        report.Note("of pictures of " + SizeText(givenSize) + " " + SizeText(Size()) +
                    " are written, which the encoder takes; --lossless keeps the rest too");
    if (origin) copies.emplace(*origin, *encoder, *output, report);
    WriteHeader();
}

FilmWriter::PartFile::~PartFile() {
    std::error_code ignored;
    if (isThere) files::remove(path, ignored);
}

/// Makes the unfinished file: of two runs at once only one can.
void FilmWriter::ClaimPath(bool overwrite) {
    std::error_code error;
    if (files::is_directory(path, error)) throw RunError("is a folder; name a file");
    if (!overwrite && files::exists(path, error)) throw RunError("is there already; --overwrite replaces it");
    if (overwrite) files::remove(part.path, error);
    const OwnedFile made(std::fopen(part.path.c_str(), "wbx"));
    if (!made && errno == EEXIST)
        throw RunError(PrintablePath(part.path) +
                       ", left by an earlier run or in the work of another, is in its way; --overwrite replaces it");
    if (!made)
        throw RunError(std::string("cannot be opened for writing: ") + std::strerror(errno) +
                       "; check the path and its rights");
    part.isThere = true;
}

void FilmWriter::AddPictures(const FilmTarget& target) {
    AVStream* const stream = avformat_new_stream(output.get(), nullptr);
    if (!stream) throw std::bad_alloc();
    CheckAv(avcodec_parameters_from_context(stream->codecpar, encoder.get()), "the film cannot be described");
    stream->time_base = encoder->time_base;
    stream->avg_frame_rate = encoder->framerate;
    stream->sample_aspect_ratio = encoder->sample_aspect_ratio;
    stream->disposition = AV_DISPOSITION_DEFAULT;
    if (origin) CopyTexts(origin->VideoStream().metadata, &stream->metadata);
    const Ratio base = target.info.timeBase;
    timeBase = base.Known() ? AVRational{static_cast<int>(base.numerator), static_cast<int>(base.denominator)}
                            : encoder->time_base;
    usualLength = std::max<int64_t>(1, av_rescale_q(1, av_inv_q(encoder->framerate), encoder->time_base));
}

void FilmWriter::WriteHeader() {
    const int result = avio_open(&output->pb, FileUrl(part.path).c_str(), AVIO_FLAG_WRITE);
    CheckAv(result, "cannot be opened for writing; check the path and its rights");
    CheckAv(avformat_write_header(output.get(), nullptr), "cannot be begun");
    if (copies) copies->WriteCovers();
}

void FilmWriter::Write(const VideoFrame& frame, const PicturePlanes& planes) {
    if (copies)
        for (const auto& companion : frame.companions) copies->Write(*companion);
    if (!frame.hasPicture) return;
    FillPicture(planes);
    const int64_t time = av_rescale_q(frame.start, timeBase, encoder->time_base);
    lastTime = lastTime == INT64_MIN ? time : std::max(time, lastTime + 1);
    picture->pts = lastTime;
    Encode(picture.get());
    hasPictures = true;
}

void FilmWriter::FillPicture(const PicturePlanes& planes) {
    if (!picture->data[0]) {
        picture->format = encoder->pix_fmt;
        picture->width = encoder->width;
        picture->height = encoder->height;
        picture->sample_aspect_ratio = encoder->sample_aspect_ratio;
        picture->color_range = encoder->color_range;
        picture->color_primaries = encoder->color_primaries;
        picture->color_trc = encoder->color_trc;
        picture->colorspace = encoder->colorspace;
        picture->chroma_location = encoder->chroma_sample_location;
        CheckAv(av_frame_get_buffer(picture.get(), 0), "a picture cannot be made");
    }
    CheckAv(av_frame_make_writable(picture.get()),
            "a picture cannot be made");  // the encoder may still hold the last one
    for (int plane = 0; plane < 3; ++plane) {
        const int step = plane == 0 ? givenSize.width : givenSize.ChromaWidth();
        const int width = plane == 0 ? encoder->width : (encoder->width + 1) / 2;
        const int height = plane == 0 || fullHeightChroma ? encoder->height : (encoder->height + 1) / 2;
        av_image_copy_plane(picture->data[plane], picture->linesize[plane], planes[static_cast<size_t>(plane)].data(),
                            step, width, height);
    }
}

/// Encodes a picture, or with null what the encoder still holds.
void FilmWriter::Encode(const AVFrame* given) {
    CheckAv(avcodec_send_frame(encoder.get(), given), std::string("the encoder ") + encoder->codec->name + " failed");
    for (;;) {
        const int result = avcodec_receive_packet(encoder.get(), packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        CheckAv(result, std::string("the encoder ") + encoder->codec->name + " failed");
        if (packet->duration == 0) packet->duration = usualLength;
        packet->stream_index = 0;
        av_packet_rescale_ts(packet.get(), encoder->time_base, output->streams[0]->time_base);
        CheckAv(av_interleaved_write_frame(output.get(), packet.get()), cannotWrite);
    }
}

void FilmWriter::Close() {
    Encode(nullptr);
    CheckAv(av_write_trailer(output.get()), cannotWrite);
    CheckAv(avio_closep(&output->pb), cannotWrite);
}

void FilmWriter::Finish() {
    Close();
    std::error_code error;
    files::rename(part.path, path, error);
    if (error) throw RunError("cannot be put in its place: " + error.message());
    part.isThere = false;
}

std::string FilmWriter::Abandon() {
    if (!part.isThere) return {};
    try {
        if (output->pb) Close();
    } catch (const std::exception&) {  // what cannot be kept is told already
        if (NeedsItsEnd(*output->oformat)) return {};
    }
    if (!hasPictures) return {};
    output.reset();
    part.isThere = false;
    return part.path;
}

std::string FilmWriter::Description() const {
    const std::string copied = copies ? copies->Description() : "";
    return EncoderText(*encoder) + (copied.empty() ? "" : ", " + copied);
}

}  // namespace clarivex
