#include "host/film/film_reader.h"

#include <algorithm>
#include <utility>

#include "host/errors.h"
#include "host/film/film_description.h"
#include "host/film_rules.h"
#include "host/run_figures.h"
#include "platform/console.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/mathematics.h>
}

namespace clarivex {

namespace {}  // namespace

FilmReader::FilmReader(const FilmRequest& request, Report& report)
    : told(report),
      part(request.part),
      deinterlaces(request.deinterlacing == Deinterlacing::automatic),
      origin(std::make_shared<FilmOrigin>(request)),
      damage(report),
      packets(*origin, request.part, request.withCompanions, report, damage) {
    const AVCodecParameters& parameters = *origin->VideoStream().codecpar;
    RefuseHighDynamicRange(parameters.color_trc, request.path, '\'');
    if (parameters.width > 0 && parameters.height > 0) CheckPictureSize({parameters.width, parameters.height});
    OpenDecoder();
    while (!pictureIsReady)
        if (FindPicture() == Step::end) throw RunError(NoPictureText());
    RefuseHighDynamicRange(picture->color_trc, request.path, '\'');
}

std::string FilmReader::NoPictureText() const {
    if (firstSize.width > 0) return "holds no picture in the part that --start and --duration take";
    return "holds no picture that can be decoded" + (damage.Count() > 0 ? "; " + DamageText(damage.Count()) : "");
}

void FilmReader::OpenDecoder() {
    const AVStream& stream = origin->VideoStream();
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec) throw RunError("its video cannot be decoded: FFmpeg's libraries on this system have no decoder for it");
    decoder.reset(avcodec_alloc_context3(codec));
    if (!decoder) throw std::bad_alloc();
    CheckAv(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "its video cannot be decoded");
    decoder->pkt_timebase = stream.time_base;
    decoder->thread_count = 0;  // as many as there are processor cores
    decoder->max_pixels = int64_t{largestPictureSide} * largestPictureSide;
    CheckAv(avcodec_open2(decoder.get(), codec, nullptr), "its video cannot be decoded");
}

bool FilmReader::Read(VideoFrame& frame, const WritablePlanes& planes) {
    frame.hasPicture = false;
    const Step step = partEnded ? Step::end : FindPicture();
    if (step == Step::picture) GivePicture(frame, planes);
    const bool more = step != Step::end || packets.ReadBehindPart();
    packets.TakeCompanions(frame.companions);
    return more || !frame.companions.empty();
}

/// The next picture that lies in the part wanted, in `picture`.
FilmReader::Step FilmReader::FindPicture() {
    while (!pictureIsReady) {
        const Step step = NextPicture();
        if (step != Step::picture) return step;
        const AVRational base = (emptiedChain ? emptiedChain : chain)->TimeBase();
        const AVStream& stream = origin->VideoStream();
        const bool isTold = picture->pts != AV_NOPTS_VALUE;
        const int64_t firstMoment = av_rescale_q(origin->firstTime, microseconds, stream.time_base);
        const int64_t start = isTold ? av_rescale_q(picture->pts, base, stream.time_base) - firstMoment : 0;
        const uint64_t madeUp = timer->MadeUp();
        pictureStart = timer->Next(isTold ? std::optional(start) : std::nullopt) -
                       av_rescale_q(part.start, microseconds, stream.time_base);
        if (madeUp == 0 && timer->MadeUp() == 1)
            told.Note("time stamps that are missing or do not grow are made up from the frame rate");
        pictureIsReady = part.start == 0 || pictureStart >= 0;
    }
    if (info.size.width == 0) {
        info.size = {picture->width, picture->height};
        info.sampleAspect = RatioOf(picture->sample_aspect_ratio);
    }
    if (framesGiven < part.frames && pictureStart < packets.PartEnd()) return Step::picture;
    packets.EndPartAt(pictureStart);
    partEnded = true;
    return Step::end;
}

FilmReader::Step FilmReader::NextPicture() {
    for (;;) {
        av_frame_unref(picture.get());
        if (TakeFromChains()) return Step::picture;
        if (decoderEnded || NotedSignal() != 0) return Step::end;
        if (packets.CompanionCount() >= mostCompanions && info.size.width != 0) return Step::companions;
        if (!DecodeMore() && decoderEnded && chain) chain->Put(nullptr);
    }
}

bool FilmReader::TakeFromChains() {
    if (emptiedChain && emptiedChain->Take(*picture)) return true;
    emptiedChain.reset();
    return chain && chain->Take(*picture);
}

/// Decodes a picture into the chain, or reads a packet; false when no picture came of it.
bool FilmReader::DecodeMore() {
    const int result = avcodec_receive_frame(decoder.get(), decoded.get());
    if (result == 0) {
        TakeDecoded();
        return true;
    }
    if (result == AVERROR_EOF)
        decoderEnded = true;
    else if (result == AVERROR(EAGAIN))
        FeedDecoder();
    else
        damage.Add(packets.SecondsAt(packets.Packet().pts), "a picture could not be decoded: " + AvErrorText(result));
    return false;
}

/// Reads a packet, and has the decoder begin on it if it is one of the pictures.
void FilmReader::FeedDecoder() {
    const FilmPackets::Kind kind = packets.Read();
    if (kind == FilmPackets::Kind::other) return;
    const AVPacket* const read = kind == FilmPackets::Kind::picture ? &packets.Packet() : nullptr;
    const int result = avcodec_send_packet(decoder.get(), read);
    if (result < 0 && result != AVERROR_EOF && result != AVERROR(EAGAIN))
        damage.Add(read ? packets.SecondsAt(read->pts) : std::nullopt,
                   "left out, it could not be decoded: " + AvErrorText(result));
}

void FilmReader::TakeDecoded() {
    decoded->sample_aspect_ratio =
        av_guess_sample_aspect_ratio(origin->container.get(), &origin->VideoStream(), decoded.get());
    decoded->pts = decoded->best_effort_timestamp;
    if (firstSize.width == 0) Begin();
    if (decoded->decode_error_flags != 0 || (decoded->flags & AV_FRAME_FLAG_CORRUPT) != 0)
        damage.Add(packets.SecondsAt(decoded->pts), "a damaged picture was mended from its neighbours");
    DecodedFormat format = FormatOf(*decoded);
    interlacedSeen = interlacedSeen || format.interlaced;
    format.interlaced = interlacedSeen && deinterlaces;
    if (!chainFormat || !(format == *chainFormat)) BuildChain(format);
    chain->Put(decoded.get());
    av_frame_unref(decoded.get());
}

/// With the first decoded picture.
void FilmReader::Begin() {
    firstSize = {decoded->width, decoded->height};
    CheckPictureSize(firstSize);
    info = DescribeFilm(*origin, *decoded, part);
    info.origin = origin;
    timer.emplace(UsualFrameLength(info));
}

/// Pictures still in the chain before come first.
void FilmReader::BuildChain(const DecodedFormat& format) {
    AVStream& stream = origin->VideoStream();
    size_t matrixBytes = 0;
    const uint8_t* const matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &matrixBytes);
    const bool isWhole = matrix && matrixBytes >= 9 * sizeof(int32_t);
    const ConversionPlan plan =
        PlanConversion(format, firstSize, deinterlaces, isWhole ? reinterpret_cast<const int32_t*>(matrix) : nullptr);
    if (chain) chain->Put(nullptr);
    emptiedChain = std::exchange(chain, std::make_unique<PictureChain>(plan, format, stream.time_base));
    chainFormat = format;
    for (const std::string& reason : plan.reasons) {
        if (std::find(reasonsTold.begin(), reasonsTold.end(), reason) != reasonsTold.end()) continue;
        reasonsTold.push_back(reason);
        const std::optional<double> seconds = framesGiven > 0 ? packets.SecondsAt(decoded->pts) : std::nullopt;
        told.Note((seconds ? "at " + TimeText(*seconds) + ": " : "") + reason);
    }
}

void FilmReader::GivePicture(VideoFrame& frame, const WritablePlanes& planes) {
    for (size_t plane = 0; plane < planes.size(); ++plane) {
        const int width = plane == 0 ? info.size.width : info.size.ChromaWidth();
        const int height = plane == 0 ? info.size.height : info.size.ChromaHeight();
        av_image_copy_plane(planes[plane].data(), width, picture->data[plane], picture->linesize[plane], width, height);
    }
    frame.hasPicture = true;
    frame.start = pictureStart;
    frame.length = timer->UsualLength();
    frame.parameters.clear();
    pictureIsReady = false;
    ++framesGiven;
}

}  // namespace clarivex
