// The 3/2 enlargement of luma: three phases of eight taps, along rows and down columns.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "simd/blocks.inl"

namespace clarivex {
namespace {

template <class Lanes>
void SplitRow(const uint8_t* row, int16_t* even, int16_t* odd, int32_t count) {
    ForEachBlock<Lanes>(count, [&](int32_t x, auto block) {
        const auto raised = Lanes::RaiseUpperHalf(block.Load(row + x));
        Lanes::Store(even + x / 2, Lanes::SignedRepeatEven(raised));
        Lanes::Store(odd + x / 2, Lanes::SignedRepeatOdd(raised));
    });
}

/// The words that the three phases of a register of outputs look at: even and odd samples two before to two behind.
template <class Lanes>
struct PhaseWindow {
    typename Lanes::I16 samples[10];

    PhaseWindow(const int16_t* even, const int16_t* odd) {
        for (int32_t i = 0; i < 5; ++i) {
            samples[2 * i] = Lanes::InRegister(Lanes::Load(even + i - 2));
            samples[2 * i + 1] = Lanes::InRegister(Lanes::Load(odd + i - 2));
        }
    }

    typename Lanes::I16 Sum(int32_t phase, const typename Lanes::I16* taps) const {
        auto sum = Lanes::Set(8160);
        for (int32_t k = 0; k < 8; ++k)
            sum = Lanes::AddWrap(sum, Lanes::MulHigh(samples[phase + k], taps[8 * phase + k]));
        return Lanes::template ShiftRight<6>(sum);
    }
};

template <class Lanes>
void EnlargeRow(const int16_t* even, const int16_t* odd, const int16_t* taps, uint8_t* out, int32_t pairs) {
    typename Lanes::I16 tapWords[24];
    for (int32_t k = 0; k < 24; ++k) tapWords[k] = Lanes::Set(taps[k]);
    for (int32_t n = 0; n < pairs; n += blockLength<Lanes>) {
        typename Lanes::Pair phases[3];
        const PhaseWindow<Lanes> low(even + n, odd + n);
        for (int32_t j = 0; j < 3; ++j) phases[j].low = low.Sum(j, tapWords);
        const PhaseWindow<Lanes> high(even + n + Lanes::width, odd + n + Lanes::width);
        for (int32_t j = 0; j < 3; ++j) phases[j].high = high.Sum(j, tapWords);
        Lanes::StoreTriples(out + 3 * n, phases[0], phases[1], phases[2]);
    }
}

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
    const auto add = [](typename Lanes::I16 a, typename Lanes::I16 b) {
        return saturating ? Lanes::AddSat(a, b) : Lanes::AddWrap(a, b);
    };
    typename Lanes::I16 tapWords[8];
    for (int32_t k = 0; k < 8; ++k) tapWords[k] = Lanes::Set(taps[k]);
    const auto rounding = Lanes::Set(8192);
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const auto sum = [&](int32_t column) {
            auto total = Lanes::MulHigh(Lanes::Load(rows[0] + column), tapWords[0]);
            for (int32_t k = 1; k < 8; ++k)
                total = add(total, Lanes::MulHigh(Lanes::Load(rows[k] + column), tapWords[k]));
            return Lanes::template ShiftRight<6>(add(total, rounding));
        };
        block.Store(out + x, Lanes::Pack(sum(x), sum(x + Lanes::width)));
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
