// The times of a film's frames made fit to be written: known, and growing from frame to frame.
#pragma once

#include <cstdint>
#include <optional>

namespace clarivex {

/// One frame in, one time out, in steps of one time base.
class FrameTimer {
public:
    /// usualLength  steps from frame to frame where nothing else is known; at least 1
    explicit FrameTimer(int64_t usualLength) : usual(usualLength) {}

    /// The time of the next frame: the one told, if it lies behind the last frame's, otherwise the last frame's and the
    /// usual length.
    int64_t Next(std::optional<int64_t> told);

    int64_t UsualLength() const { return usual; }

    /// How many times had to be made up so far.
    uint64_t MadeUp() const { return madeUp; }

private:
    int64_t usual;
    int64_t last = 0;
    bool started = false;
    uint64_t madeUp = 0;
};

inline int64_t FrameTimer::Next(std::optional<int64_t> told) {
    const bool fits = told && (!started || *told > last);
    if (!fits) ++madeUp;
    last = fits ? *told : started ? last + usual : 0;
    started = true;
    return last;
}

}  // namespace clarivex
