#include "host/film/film_origin.h"

#include <algorithm>
#include <new>

#include "host/errors.h"
#include "host/film/damage_log.h"
#include "host/film/library_log.h"
#include "platform/console.h"

namespace clarivex {

namespace {

constexpr int streamBufferBytes = 1 << 16;
constexpr int64_t firstStepBack = 5 * int64_t{AV_TIME_BASE};  // a little more than key pictures are apart

int ReadFromStream(void* stream, uint8_t* target, int size) {
    try {
        const size_t count = static_cast<ByteSource*>(stream)->Read({target, static_cast<size_t>(size)});
        return count > 0 ? static_cast<int>(count) : AVERROR_EOF;
    } catch (const RunError&) {
        return AVERROR(EIO);
    }
}

AvPointer<AVIOContext> MakeStreamInput(ByteSource* stream) {
    auto* const buffer = static_cast<unsigned char*>(av_malloc(streamBufferBytes));
    AVIOContext* const input =
        buffer ? avio_alloc_context(buffer, streamBufferBytes, 0, stream, ReadFromStream, nullptr, nullptr) : nullptr;
    if (!input) {
        av_free(buffer);
        throw std::bad_alloc();
    }
    return AvPointer<AVIOContext>(input);
}

int WasInterrupted(void*) { return NotedSignal() != 0 ? 1 : 0; }

bool IsPicture(const AVStream& stream) { return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0; }

}  // namespace

FilmOrigin::FilmOrigin(const FilmRequest& request) : partStart(request.part.start), partLength(request.part.duration) {
    CatchLibraryLog();
    Open(request);
    FindVideo();
    SeekToPart();
}

void FilmOrigin::Open(const FilmRequest& request) {
    AVFormatContext* opened = avformat_alloc_context();
    if (!opened) throw std::bad_alloc();
    opened->interrupt_callback.callback = WasInterrupted;
    if (request.stream) opened->pb = (streamInput = MakeStreamInput(request.stream)).get();
    const std::string url = request.stream ? "" : FileUrl(request.path);
    const int result = avformat_open_input(&opened, url.c_str(), nullptr, nullptr);  // frees it where it fails
    container.reset(opened);
    CheckAv(result, "is no video that can be read");
    CheckAv(avformat_find_stream_info(opened, nullptr), "is no video that can be read");
    if (container->start_time != AV_NOPTS_VALUE) firstTime = std::max<int64_t>(0, container->start_time);
}

void FilmOrigin::FindVideo() {
    const AVCodec* decoder = nullptr;
    videoIndex = av_find_best_stream(container.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (videoIndex == AVERROR_DECODER_NOT_FOUND)
        throw RunError("its video cannot be decoded: FFmpeg's libraries on this system have no decoder for it");
    if (videoIndex < 0) throw RunError("holds no video, only other streams; name a file with moving pictures");
    if (IsPicture(VideoStream()))
        throw RunError("holds no video, only a cover picture; name a file with moving pictures");
    VideoStream().discard = AVDISCARD_DEFAULT;
}

void FilmOrigin::SeekToPart() {
    if (partStart <= 0) return;
    if (container->duration != AV_NOPTS_VALUE && partStart >= container->duration)
        throw RunError("ends at " + TimeText(static_cast<double>(container->duration) / AV_TIME_BASE) +
                       ", before the time to start at");
    if (container->pb && container->pb->seekable == 0) return;  // what is before the part is read and skipped
    for (int64_t before = 0; PartStart() - before > firstTime; before = std::max(firstStepBack, 4 * before))
        if (SeekTo(PartStart() - before) && KeyPictureComesInTime()) {
            SeekTo(PartStart() - before);
            return;
        }
    if (!SeekTo(firstTime) || !KeyPictureComesInTime() || !SeekTo(firstTime))
        av_seek_frame(container.get(), -1, 0, AVSEEK_FLAG_BYTE);
}

bool FilmOrigin::SeekTo(int64_t time) { return avformat_seek_file(container.get(), -1, INT64_MIN, time, time, 0) >= 0; }

bool FilmOrigin::KeyPictureComesInTime() {
    const AvPointer<AVPacket> packet = MakeAvPacket();
    while (av_read_frame(container.get(), packet.get()) >= 0) {
        const int64_t time = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        const bool isKey = packet->stream_index == videoIndex && (packet->flags & AV_PKT_FLAG_KEY) != 0;
        av_packet_unref(packet.get());
        if (isKey && time != AV_NOPTS_VALUE)
            return av_compare_ts(time, VideoStream().time_base, PartStart(), microseconds) <= 0;
    }
    return false;
}

std::optional<double> FilmOrigin::StatedEnd() const {
    const bool isGuessed = container->duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
    if (container->duration == AV_NOPTS_VALUE || isGuessed) return std::nullopt;
    const int64_t start = container->start_time != AV_NOPTS_VALUE ? container->start_time : 0;
    return static_cast<double>(start - firstTime + container->duration) / AV_TIME_BASE;
}

}  // namespace clarivex
