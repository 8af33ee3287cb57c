// Random numbers of our own, so that every run of every build draws the same noise.
#pragma once

#include <cstdint>

namespace clarivex {

/// Linear congruential generator of 15-bit numbers with a fixed start.
class Random15 {
public:
    /// 0 … 32767. The first numbers are 41, 18467, 6334.
    int32_t Next() {
        state = state * 214013U + 2531011U;
        return static_cast<int32_t>((state >> 16) & 0x7FFF);
    }

private:
    uint32_t state = 1;
};

}  // namespace clarivex
