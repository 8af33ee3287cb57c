// Constants that alternate by column, as the tables of words that the output kernels take.
#pragma once

#include <array>
#include <cstdint>

#include "simd/kernel_table.h"

namespace clarivex {

/// Constants of four columns in turn.
using Columns4 = std::array<int16_t, patternPeriod>;

/// Entry x is for column x; a period of four columns is repeated.
struct ColumnPattern {
    std::array<int16_t, patternLength> words{};

    const int16_t* Data() const { return words.data(); }
};

/// `even` + dither on even columns, `odd` + dither on odd ones.
inline ColumnPattern MakePattern(int32_t even, int32_t odd, const Columns4& dither) {
    ColumnPattern pattern;
    for (size_t x = 0; x < pattern.words.size(); ++x)
        pattern.words[x] = static_cast<int16_t>((x % 2 == 0 ? even : odd) + dither[x % patternPeriod]);
    return pattern;
}

}  // namespace clarivex
