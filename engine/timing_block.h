// How long passes of one picture size take, in cycles, for inspection in a debugger. Nothing decides by it.
#pragma once

#include <array>
#include <cstdint>

#include "runtime/fast_lock.h"
#include "runtime/planes.h"

namespace clarivex {

/// Kinds of passes that are timed apart; passes of other modes are not timed.
enum class TimingClass : int32_t { none = 0, rowsOnly = 1, bothAxes = 2, columnsFirst = 3, twofoldRows = 4 };

/// Figures of one kind.
struct TimingFigures {
    std::array<int64_t, 3> samples{};
    int32_t sampleCount = 0;
    int64_t bestMean = 0;  ///< smallest mean of three samples so far
    int32_t meanCount = 0;
};

class TimingBlock {
public:
    /// Notes one pass of a picture. Pictures below 16 × 16 and durations that aren't positive only
    /// leave their size. May be called from any thread.
    void Note(TimingClass kind, const FrameSize& newSize, int64_t cycles);

    /// Figures of a kind as they stand; not synchronised with Note.
    const TimingFigures& Figures(TimingClass kind) const { return figures[static_cast<size_t>(kind)]; }

private:
    void AddSample(TimingFigures& kind, int64_t cycles);

    FastLock lock;
    std::array<TimingFigures, 5> figures{};
    FrameSize size;
};

}  // namespace clarivex
