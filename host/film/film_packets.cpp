#include "host/film/film_packets.h"

#include <algorithm>
#include <utility>

#include "platform/console.h"

extern "C" {
#include <libavutil/mathematics.h>
}

namespace clarivex {

namespace {

constexpr double companionsBehind = 2.0;  // seconds behind the part's end in which the other streams may still lag
constexpr double missingAtTheEnd = 2.0;   // seconds; files end this early without being cut short

/// Streams whose packets a writer may copy.
bool IsCopied(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    return type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_SUBTITLE;
}

int64_t StartOf(const AVPacket& packet) { return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts; }

}  // namespace

FilmPackets::FilmPackets(const FilmOrigin& film, const PartOptions& wanted, bool withCompanions, Report& report,
                         DamageLog& damage)
    : origin(film),
      part(wanted),
      keepsCompanions(withCompanions),
      told(report),
      damaged(damage),
      clockJumps(*film.container) {
    if (part.duration != INT64_MAX)
        EndPartAt(std::max<int64_t>(1, av_rescale_q(part.duration, microseconds, origin.VideoStream().time_base)));
}

FilmPackets::Kind FilmPackets::Read() {
    const int result = ended ? AVERROR_EOF : Take();
    if (result < 0) {
        if (!std::exchange(ended, true)) TellEnd(result);
        return Kind::end;
    }
    if (packet->stream_index != origin.videoIndex) {
        KeepCompanion();
        return Kind::other;
    }
    if ((packet->flags & AV_PKT_FLAG_CORRUPT) != 0)
        damaged.Add(SecondsAt(StartOf(*packet)), "the container is damaged");
    return Kind::picture;
}

/// The container's next packet in `packet`, or an error code.
int FilmPackets::Take() {
    av_packet_unref(packet.get());
    const int result = av_read_frame(origin.container.get(), packet.get());
    if (result < 0) return result;
    const AVStream& stream = *origin.container->streams[packet->stream_index];
    if (clockJumps.Mend(*packet, stream) && !std::exchange(clockJumped, true))
        told.Note("behind " + TimeText(lastEnd) + " the time stamps begin anew; they are made to go on");
    const int64_t start = StartOf(*packet);
    if (start != AV_NOPTS_VALUE)
        lastEnd = std::max(lastEnd, static_cast<double>(start + packet->duration) * av_q2d(stream.time_base) -
                                        static_cast<double>(origin.firstTime) / AV_TIME_BASE);
    return result;
}

void FilmPackets::TellEnd(int reason) {
    if (NotedSignal() != 0) return;
    if (reason != AVERROR_EOF && reason != AVERROR_EXIT)
        return damaged.Add(std::nullopt,
                           "nothing can be read behind " + TimeText(lastEnd) + ": " + AvErrorText(reason));
    const std::optional<double> end = origin.StatedEnd();
    if (end && lastEnd + missingAtTheEnd < *end)
        damaged.Add(std::nullopt,
                    "ends at " + TimeText(lastEnd) + ", but should play for " + TimeText(*end) + ": it was cut short");
}

/// Whether a packet, which has a time, lies in the part wanted. Subtitles that stand at one of its ends are cut.
bool FilmPackets::CutToPart(AVPacket& companion, const AVStream& stream) const {
    const AVRational pictureBase = origin.VideoStream().time_base;
    const bool isSubtitle = stream.codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE;
    const int64_t partStart = av_rescale_q(origin.PartStart(), microseconds, stream.time_base);
    int64_t start = StartOf(companion) - partStart;
    if (av_compare_ts(start, stream.time_base, partEnd, pictureBase) >= 0) return false;
    if (part.start > 0 && start < 0) {
        if (!isSubtitle || start + companion.duration <= 0) return false;
        companion.duration += start;
        companion.pts = companion.dts = partStart;
        start = 0;
    }
    if (isSubtitle && partEnd != INT64_MAX)
        companion.duration = std::min(companion.duration, av_rescale_q(partEnd, pictureBase, stream.time_base) - start);
    return true;
}

/// Keeps a packet of another stream if that is copied and it lies in the part wanted.
void FilmPackets::KeepCompanion() {
    const AVStream& stream = *origin.container->streams[packet->stream_index];
    if (!keepsCompanions || !IsCopied(stream)) return;
    if (StartOf(*packet) != AV_NOPTS_VALUE && !CutToPart(*packet, stream)) return;
    AvPointer<AVPacket> kept = MakeAvPacket();
    av_packet_move_ref(kept.get(), packet.get());
    companions.emplace_back(std::move(kept));
}

bool FilmPackets::ReadBehindPart() {
    if (!keepsCompanions || partEnd == INT64_MAX) return false;
    const AVRational base = origin.VideoStream().time_base;
    const double end = static_cast<double>(part.start) / AV_TIME_BASE + static_cast<double>(partEnd) * av_q2d(base);
    for (size_t count = 0; count < mostCompanions; ++count) {
        if (ended || lastEnd > end + companionsBehind || NotedSignal() != 0) return false;
        ended = Take() < 0;
        if (ended) return false;
        if (packet->stream_index != origin.videoIndex) KeepCompanion();
    }
    return true;
}

void FilmPackets::TakeCompanions(std::vector<std::shared_ptr<AVPacket>>& into) {
    into.clear();
    std::swap(into, companions);
}

std::optional<double> FilmPackets::SecondsAt(int64_t steps) const {
    if (steps == AV_NOPTS_VALUE) return std::nullopt;
    return static_cast<double>(steps) * av_q2d(origin.VideoStream().time_base) -
           static_cast<double>(origin.firstTime) / AV_TIME_BASE;
}

}  // namespace clarivex
