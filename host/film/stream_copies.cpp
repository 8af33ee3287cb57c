#include "host/film/stream_copies.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "host/errors.h"
#include "host/film/library_log.h"

extern "C" {
#include <libavutil/mathematics.h>
}

namespace clarivex {

namespace {

bool IsCover(const AVStream& stream) { return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0; }

/// Matroska keeps covers among its attachments.
bool KeepsCoversAsAttachments(const AVOutputFormat& container) {
    return std::string_view(container.name) == "matroska";
}

bool IsCandidate(const AVStream& stream) {
    switch (stream.codecpar->codec_type) {
        case AVMEDIA_TYPE_AUDIO:
        case AVMEDIA_TYPE_SUBTITLE:
        case AVMEDIA_TYPE_ATTACHMENT: return true;
        default: return IsCover(stream);
    }
}

/// Containers of MPEG take any stream as private data, which no player knows; these they name.
bool IsNamedByMpeg(AVCodecID codec, bool inTransportStream) {
    switch (codec) {
        case AV_CODEC_ID_MP1:
        case AV_CODEC_ID_MP2:
        case AV_CODEC_ID_MP3:
        case AV_CODEC_ID_AC3:
        case AV_CODEC_ID_DTS: return true;
        case AV_CODEC_ID_AAC:
        case AV_CODEC_ID_AAC_LATM:
        case AV_CODEC_ID_EAC3:
        case AV_CODEC_ID_TRUEHD:
        case AV_CODEC_ID_OPUS:
        case AV_CODEC_ID_S302M:
        case AV_CODEC_ID_DVB_SUBTITLE:
        case AV_CODEC_ID_DVB_TELETEXT: return inTransportStream;
        case AV_CODEC_ID_PCM_DVD:
        case AV_CODEC_ID_DVD_SUBTITLE: return !inTransportStream;
        default: return false;
    }
}

/// Whether a player would find the stream again where a container takes it.
bool IsFoundAgain(const AVStream& stream, const AVOutputFormat& container) {
    const std::string_view name = container.name;
    if (IsCover(stream)) return KeepsCoversAsAttachments(container) || name == "mp4" || name == "ipod";
    constexpr std::array<std::string_view, 5> programStreams = {"mpeg", "vcd", "svcd", "dvd", "vob"};
    const bool isProgramStream = std::find(programStreams.begin(), programStreams.end(), name) != programStreams.end();
    if (name == "mpegts" || isProgramStream) return IsNamedByMpeg(stream.codecpar->codec_id, name == "mpegts");
    return container.audio_codec != AV_CODEC_ID_NONE;  // otherwise it is a bare stream of pictures
}

AVStream& NewStream(AVFormatContext& output) {
    AVStream* const stream = avformat_new_stream(&output, nullptr);
    if (!stream) throw std::bad_alloc();
    return *stream;
}

void CheckMemory(int code) {
    if (code < 0) throw std::bad_alloc();
}

void CopySideData(const AVStream& source, AVStream& target) {
    for (int i = 0; i < source.nb_side_data; ++i) {
        const AVPacketSideData& data = source.side_data[i];
        uint8_t* const copy = av_stream_new_side_data(&target, data.type, data.size);
        if (!copy) throw std::bad_alloc();
        std::memcpy(copy, data.data, data.size);
    }
}

void MakeAttachment(const AVStream& cover, AVStream& target) {
    AVCodecParameters& parameters = *target.codecpar;
    const AVPacket& picture = cover.attached_pic;
    const bool isPng = parameters.codec_id == AV_CODEC_ID_PNG;
    parameters.codec_type = AVMEDIA_TYPE_ATTACHMENT;
    av_freep(&parameters.extradata);
    parameters.extradata =
        static_cast<uint8_t*>(av_mallocz(static_cast<size_t>(picture.size) + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!parameters.extradata) throw std::bad_alloc();
    std::memcpy(parameters.extradata, picture.data, static_cast<size_t>(picture.size));
    parameters.extradata_size = picture.size;
    av_dict_set(&target.metadata, "filename", isPng ? "cover.png" : "cover.jpg", AV_DICT_DONT_OVERWRITE);
    av_dict_set(&target.metadata, "mimetype", isPng ? "image/png" : "image/jpeg", AV_DICT_DONT_OVERWRITE);
}

/// A stream like another in another container.
AVStream& AddCopy(const AVStream& source, AVFormatContext& output) {
    AVStream& target = NewStream(output);
    CheckMemory(avcodec_parameters_copy(target.codecpar, source.codecpar));
    target.codecpar->codec_tag = 0;  // containers name codecs in ways of their own
    target.time_base = source.time_base;
    target.disposition = source.disposition;
    target.avg_frame_rate = source.avg_frame_rate;
    target.sample_aspect_ratio = source.sample_aspect_ratio;
    CheckMemory(av_dict_copy(&target.metadata, source.metadata, 0));
    CopySideData(source, target);
    if (IsCover(source) && KeepsCoversAsAttachments(*output.oformat)) MakeAttachment(source, target);
    return target;
}

/// Whether a container takes a stream beside the pictures: tried on one that nobody sees.
bool Takes(const AVFormatContext& output, const AVCodecContext& encoder, const AVStream& candidate) {
    if (!IsFoundAgain(candidate, *output.oformat)) return false;
    AVFormatContext* trial = nullptr;
    CheckMemory(avformat_alloc_output_context2(&trial, output.oformat, nullptr, nullptr));
    bool taken = false;
    try {
        AVStream& pictures = NewStream(*trial);
        CheckMemory(avcodec_parameters_from_context(pictures.codecpar, &encoder));
        pictures.time_base = encoder.time_base;
        AddCopy(candidate, *trial);
        CheckMemory(avio_open_dyn_buf(&trial->pb));
        taken = avformat_write_header(trial, nullptr) >= 0;
    } catch (...) {
        avformat_free_context(trial);
        throw;
    }
    uint8_t* written = nullptr;
    avio_close_dyn_buf(trial->pb, &written);
    av_free(written);
    avformat_free_context(trial);
    return taken;
}

const char* KindText(const AVStream& stream) {
    if (IsCover(stream)) return "cover";
    const char* const kind = av_get_media_type_string(stream.codecpar->codec_type);
    return kind ? kind : "unknown";
}

std::string NameOf(const AVStream& stream) {
    const AVDictionaryEntry* const file = av_dict_get(stream.metadata, "filename", nullptr, 0);
    return std::string(KindText(stream)) + " stream " + std::to_string(stream.index) + " (" +
           (file ? PrintablePath(file->value) : avcodec_get_name(stream.codecpar->codec_id)) + ")";
}

}  // namespace

void CopyTexts(const AVDictionary* from, AVDictionary** to) {
    constexpr std::array<std::string_view, 9> stale = {
        "encoder",          "major_brand",     "minor_version", "compatible_brands", "BPS", "DURATION",
        "NUMBER_OF_FRAMES", "NUMBER_OF_BYTES", "rotate"};
    const AVDictionaryEntry* entry = nullptr;
    while ((entry = av_dict_get(from, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr) {
        const std::string_view key = entry->key;
        const bool isStale = key.starts_with("_STATISTICS") || std::any_of(stale.begin(), stale.end(), [&](auto one) {
                                 return key == one || key == std::string(one) + "-eng";
                             });
        if (!isStale) CheckMemory(av_dict_set(to, entry->key, entry->value, AV_DICT_MULTIKEY));
    }
}

StreamCopies::StreamCopies(const FilmOrigin& from, const AVCodecContext& encoder, AVFormatContext& into, Report& report)
    : origin(from), output(into), told(report) {
    for (unsigned i = 0; i < origin.container->nb_streams; ++i) {
        const AVStream& stream = *origin.container->streams[i];
        if (stream.index == origin.videoIndex) continue;
        if (IsCandidate(stream) && Takes(output, encoder, stream))
            AddStream(stream);
        else if (stream.codecpar->codec_id != AV_CODEC_ID_BIN_DATA)  // how a container's own chapters show
            report.Note(NameOf(stream) + " is left out: " +
                        (IsCandidate(stream) ? output.oformat->name + std::string(" files do not take it")
                                             : "only sound, subtitles, covers and attachments are copied"));
    }
    AddChapters();
    CopyTexts(origin.container->metadata, &output.metadata);
}

void StreamCopies::AddStream(const AVStream& source) {
    const int64_t partStart = av_rescale_q(origin.PartStart(), microseconds, source.time_base);
    copies.push_back(
        {source.index, AddCopy(source, output).index, source.codecpar->codec_type, source.time_base, partStart});
}

/// Chapters of the part wanted, in its time.
void StreamCopies::AddChapters() {
    const AVFormatContext& source = *origin.container;
    output.chapters = static_cast<AVChapter**>(av_calloc(source.nb_chapters + 1, sizeof(AVChapter*)));
    if (!output.chapters) throw std::bad_alloc();
    for (unsigned i = 0; i < source.nb_chapters; ++i) {
        const AVChapter& chapter = *source.chapters[i];
        const int64_t before = av_rescale_q(origin.PartStart(), microseconds, chapter.time_base);
        const int64_t length = origin.partLength != INT64_MAX
                                   ? av_rescale_q(origin.partLength, microseconds, chapter.time_base)
                                   : INT64_MAX;
        if (chapter.end <= before || chapter.start - before >= length) continue;
        auto* const copy = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
        if (!copy) throw std::bad_alloc();
        output.chapters[output.nb_chapters++] = copy;
        copy->id = chapter.id;
        copy->time_base = chapter.time_base;
        copy->start = std::max<int64_t>(0, chapter.start - before);
        copy->end = std::min(chapter.end - before, length);
        CheckMemory(av_dict_copy(&copy->metadata, chapter.metadata, 0));
    }
}

void StreamCopies::WriteCovers() {
    for (const Copy& copy : copies) {
        const AVStream& source = *origin.container->streams[copy.source];
        if (!IsCover(source) || KeepsCoversAsAttachments(*output.oformat)) continue;
        CheckAv(av_packet_ref(packet.get(), &source.attached_pic), "the cover cannot be copied");
        packet->stream_index = copy.target;
        packet->pts = packet->dts = 0;
        CheckAv(av_interleaved_write_frame(&output, packet.get()), "the cover cannot be written");
    }
}

void StreamCopies::Write(const AVPacket& read) {
    const auto copy =
        std::find_if(copies.begin(), copies.end(), [&](const Copy& one) { return one.source == read.stream_index; });
    if (copy == copies.end()) return;
    const AVStream& target = *output.streams[copy->target];
    CheckAv(av_packet_ref(packet.get(), &read), "a packet cannot be copied");
    if (packet->pts != AV_NOPTS_VALUE) packet->pts -= copy->partStart;
    packet->dts = packet->dts != AV_NOPTS_VALUE ? packet->dts - copy->partStart : packet->pts;
    av_packet_rescale_ts(packet.get(), copy->timeBase, target.time_base);
    if (packet->dts != AV_NOPTS_VALUE && packet->dts <= copy->lastTime) {  // no container takes times that go back
        packet->dts = copy->lastTime + 1;
        packet->pts = std::max(packet->pts, packet->dts);
    }
    if (packet->dts != AV_NOPTS_VALUE) copy->lastTime = packet->dts;
    packet->stream_index = copy->target;
    packet->pos = -1;
    const int result = av_interleaved_write_frame(&output, packet.get());
    if (output.pb->error < 0 || result == AVERROR(ENOMEM)) CheckAv(result, cannotWrite);
    if (result >= 0 || std::exchange(damageTold, true)) return;
    told.Note("damaged " + std::string(av_get_media_type_string(copy->kind)) + " is left out");
    TakeLastLibraryError();
}

std::string StreamCopies::Description() const {
    std::string text;
    for (const AVMediaType kind : {AVMEDIA_TYPE_AUDIO, AVMEDIA_TYPE_SUBTITLE}) {
        const auto count =
            std::count_if(copies.begin(), copies.end(), [=](const Copy& copy) { return copy.kind == kind; });
        if (count == 0) continue;
        text += (text.empty() ? "" : " and ") + std::to_string(count) + " " + av_get_media_type_string(kind);
    }
    return text.empty() ? text : text + " copied";
}

}  // namespace clarivex
