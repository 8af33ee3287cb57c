// Recordings joined without care: their clock starts anew in the middle.
#pragma once

#include <cstdint>
#include <vector>

#include "host/film/av_objects.h"

namespace clarivex {

/// Moves the times of packets so that all streams go on where the clock of their container jumps: back by more than a tenth
/// of a second, or ahead by more than 10 seconds, which is taken for no pause. Pictures and sound tell it, other streams may
/// be silent for long. Containers whose clock does not jump are left alone.
class ClockJumps {
public:
    explicit ClockJumps(const AVFormatContext& container)
        : mayJump((container.iformat->flags & AVFMT_TS_DISCONT) != 0), ends(container.nb_streams, AV_NOPTS_VALUE) {}

    /// Puts a packet, just read of this stream, in its place. Call in the order of the file. True where the clock has jumped.
    bool Mend(AVPacket& packet, const AVStream& stream);

private:
    bool FollowJump(int64_t time, int64_t length, const AVStream& stream);

    bool mayJump;
    int64_t offset = 0;         // microseconds
    std::vector<int64_t> ends;  // of the last packet of each stream, mended, in microseconds
};

}  // namespace clarivex
