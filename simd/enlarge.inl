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

/// The same without saturation, four rows at a time, by way of their sums.
template <class Lanes>
void EnlargeColumnsByHalves(const int16_t* const* rows, const int16_t* taps, uint8_t* out, int32_t width) {
    constexpr int32_t most = 256;
    int16_t sums[most + blockLength<Lanes>];
    const auto addRows = [&](int32_t first, int32_t begin, int32_t columns, const auto& start, const auto& use) {
        const int16_t* const words[4] = {rows[first] + begin, rows[first + 1] + begin, rows[first + 2] + begin,
                                         rows[first + 3] + begin};
        const typename Lanes::I16 tapWords[4] = {Lanes::Set(taps[first]), Lanes::Set(taps[first + 1]),
                                                 Lanes::Set(taps[first + 2]), Lanes::Set(taps[first + 3])};
        ForEachBlock<Lanes>(columns, [&](int32_t x, auto block) {
            const auto sum = [&](int32_t column) {
                return SumByTurns<Lanes, 4>(start(column), [&](int32_t k) {
                    return Lanes::MulHigh(Lanes::Load(words[k] + column), tapWords[k]);
                });
            };
            const auto low = sum(x);
            use(x, block, low, sum(x + Lanes::width));
        });
    };
    const auto rounding = Lanes::Set(8192);
    for (int32_t begin = 0; begin < width; begin += most) {
        const int32_t columns = std::min(most, width - begin);
        addRows(
            0, begin, columns, [&](int32_t) { return rounding; },
            [&](int32_t x, const auto&, auto low, auto high) {
                Lanes::Store(sums + x, low);
                Lanes::Store(sums + x + Lanes::width, high);
            });
        addRows(
            4, begin, columns, [&](int32_t x) { return Lanes::Load(sums + x); },
            [&](int32_t x, const auto& block, auto low, auto high) {
                block.Store(out + begin + x,
                            Lanes::Pack(Lanes::template ShiftRight<6>(low), Lanes::template ShiftRight<6>(high)));
            });
    }
}

template <class Lanes>
void EnlargeColumns(const int16_t* const* rows, const int16_t* taps, uint8_t* out, int32_t width) {
    int32_t magnitude = 0;
    for (int32_t k = 0; k < 8; ++k) magnitude += std::abs(static_cast<int32_t>(taps[k]));
    // Each product is at most half its tap (and one more, rounded down), so such sums never reach the 16-bit limits and
    // plain additions, twice as fast on many processors, give the same.
    constexpr int32_t cannotSaturate = 49000;
    if (magnitude >= cannotSaturate)
        EnlargeColumnsWith<Lanes, true>(rows, taps, out, width);
    else if (Lanes::tapsByHalves)
        EnlargeColumnsByHalves<Lanes>(rows, taps, out, width);
    else
        EnlargeColumnsWith<Lanes, false>(rows, taps, out, width);
}

}  // namespace
}  // namespace clarivex
