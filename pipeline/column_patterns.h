// Constants that alternate by column, as the tables of words that the output kernels take.
#pragma once

#include <array>
#include <cstdint>

#include "simd/kernel_table.h"

namespace clarivex {

/// Entry x is for column x; a period of four columns is repeated.
struct ColumnPattern {
    std::array<int16_t, patternLength> words{};

    const int16_t* Data() const { return words.data(); }
};

/// Dither constants of four columns in turn.
using Dither = std::array<int16_t, 4>;

constexpr Dither noDither{};

/// Eighths under the overlay, for even and odd rows of luma, in packed and planar pictures alike.
constexpr Dither overlayLumaDither[2] = {{2, 6, 2, 6}, {6, 2, 6, 2}};

/// `offset` + dither by column.
inline ColumnPattern MakePattern(int32_t offset, const Dither& dither) {
    ColumnPattern pattern;
    for (size_t x = 0; x < pattern.words.size(); ++x) pattern.words[x] = static_cast<int16_t>(offset + dither[x % 4]);
    return pattern;
}

/// `even` + dither on even columns, `odd` + dither on odd ones.
inline ColumnPattern MakePairPattern(int32_t even, int32_t odd, const Dither& dither) {
    ColumnPattern pattern;
    for (size_t x = 0; x < pattern.words.size(); ++x)
        pattern.words[x] = static_cast<int16_t>((x % 2 == 0 ? even : odd) + dither[x % 4]);
    return pattern;
}

/// What cancels the bias of 128 of a noise byte, which is added four times.
constexpr int32_t noiseBias = -512;

}  // namespace clarivex
