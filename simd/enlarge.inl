// The 3/2 enlargement of luma down the columns: three phases of eight taps.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "simd/blocks.inl"

namespace clarivex {
namespace {

template <class Lanes>
void ExpandRow(const uint8_t* row, int16_t* words, int32_t width) {
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const auto samples = block.Load(row + x);
        Lanes::Store(words + x, Lanes::CentredRepeatLow(samples));
        Lanes::Store(words + x + Lanes::width, Lanes::CentredRepeatHigh(samples));
    });
}

template <class Lanes, bool saturating>
void EnlargeColumnsWith(const int16_t* const* rows, const int16_t* taps, uint8_t* out, int32_t width) {
    // Copies, since stores of samples might change what pointers point to, for all that a compiler knows.
    const int16_t* words[8];
    std::copy_n(rows, 8, words);
    typename Lanes::I16 tapWords[8];
    for (int32_t k = 0; k < 8; ++k) tapWords[k] = Lanes::Set(taps[k]);
    const auto rounding = Lanes::Set(8192);
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const auto sum = [&](int32_t column) {
            const auto product = [&](int32_t k) { return Lanes::MulHigh(Lanes::Load(words[k] + column), tapWords[k]); };
            if constexpr (!saturating) return SumByTurns<Lanes, 8>(rounding, product);
            auto total = product(0);
            for (int32_t k = 1; k < 8; ++k) total = Lanes::AddSat(total, product(k));
            return Lanes::AddSat(total, rounding);
        };
        block.Store(out + x, Lanes::Pack(Lanes::template ShiftRight<6>(sum(x)),
                                         Lanes::template ShiftRight<6>(sum(x + Lanes::width))));
    });
}

template <class Lanes>
void EnlargeColumns(const int16_t* const* rows, const int16_t* taps, uint8_t* out, int32_t width) {
    int32_t magnitude = 0;
    for (int32_t k = 0; k < 8; ++k) magnitude += std::abs(static_cast<int32_t>(taps[k]));
    // Each product is at most half its tap (and one more, rounded down), so such sums never reach the 16-bit limits and
    // plain additions, twice as fast on many processors, give the same.
    constexpr int32_t cannotSaturate = 49000;
    if (magnitude < cannotSaturate)
        EnlargeColumnsWith<Lanes, false>(rows, taps, out, width);
    else
        EnlargeColumnsWith<Lanes, true>(rows, taps, out, width);
}

}  // namespace
}  // namespace clarivex
