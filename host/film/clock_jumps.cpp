#include "host/film/clock_jumps.h"

#include <algorithm>

namespace clarivex {

namespace {

constexpr int64_t farthestBack = AV_TIME_BASE / 10;
constexpr int64_t farthestAhead = 10 * int64_t{AV_TIME_BASE};

}  // namespace

bool ClockJumps::Mend(AVPacket& packet, const AVStream& stream) {
    const int64_t told = packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
    if (!mayJump || told == AV_NOPTS_VALUE) return false;
    const AVMediaType type = stream.codecpar->codec_type;
    const bool isSteady = type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO;
    const bool jumped = isSteady && FollowJump(av_rescale_q(told, stream.time_base, microseconds),
                                               av_rescale_q(packet.duration, stream.time_base, microseconds), stream);
    const int64_t steps = av_rescale_q(offset, microseconds, stream.time_base);
    if (packet.pts != AV_NOPTS_VALUE) packet.pts += steps;
    if (packet.dts != AV_NOPTS_VALUE) packet.dts += steps;
    return jumped;
}

bool ClockJumps::FollowJump(int64_t time, int64_t length, const AVStream& stream) {
    ends.resize(std::max(ends.size(), static_cast<size_t>(stream.index) + 1), AV_NOPTS_VALUE);
    int64_t& end = ends[static_cast<size_t>(stream.index)];
    const int64_t jump = end != AV_NOPTS_VALUE ? time + offset - end : 0;
    const bool jumped = jump < -farthestBack || jump > farthestAhead;
    if (jumped) offset -= jump;
    end = time + offset + length;
    return jumped;
}

}  // namespace clarivex
