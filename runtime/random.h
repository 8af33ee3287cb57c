// Random numbers of our own, so that every run of every build draws the same noise.
#pragma once

#include <cstdint>

namespace clarivex {

/// Linear congruential generator of 15-bit numbers. The same seed draws the same numbers in every build.
class Random15 {
public:
    explicit Random15(uint32_t seed = 1) : state(seed) {}

    /// 0 … 32767. From seed 1 the first numbers are 41, 18467, 6334.
    int32_t Next() {
        state = state * 214013U + 2531011U;
        return static_cast<int32_t>((state >> 16) & 0x7FFF);
    }

private:
    uint32_t state;
};

}  // namespace clarivex
