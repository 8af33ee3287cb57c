// Filters along a row: short ones on centred words, with an ordered rounding that breaks up contours, and those that are
// even, around the place between two samples.
#pragma once

#include <cstdint>
#include <cstring>

#include "simd/blocks.inl"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

struct BiasPattern {
    int16_t words[patternLength];
};

// 127.5 × 32, the mid-grey that centring took away, plus and minus 8.
constexpr BiasPattern MakeOrderedBias() {
    BiasPattern pattern{};
    for (int32_t x = 0; x < patternLength; ++x) pattern.words[x] = x % 2 == 0 ? 4088 : 4072;
    return pattern;
}
alignas(64) constexpr BiasPattern orderedBias = MakeOrderedBias();

/// Samples at both ends of a row that the filter leaves as they are.
inline void CopyRowEnds(const uint8_t* in, uint8_t* out, int32_t columns, int32_t first, int32_t end) {
    const int32_t head = first < columns ? first : columns;
    std::memcpy(out, in, static_cast<size_t>(head));
    const int32_t tail = end > head ? end : head;
    if (tail < columns) std::memcpy(out + tail, in + tail, static_cast<size_t>(columns - tail));
}

template <class Lanes>
void CentreRow(const uint8_t* in, int16_t* words, int32_t width) {
    for (int32_t x = 0; x < width; x += blockLength<Lanes>) {
        const auto raised = Lanes::RaiseUpperHalf(Lanes::LoadBytes(in + x));
        Lanes::Store(words + x, Lanes::SignedRepeatLow(raised));
        Lanes::Store(words + x + Lanes::width, Lanes::SignedRepeatHigh(raised));
    }
}

template <class Lanes, int32_t before, int32_t length>
void FirRow(const uint8_t* in, uint8_t* out, int32_t columns, int32_t first, int32_t end, const int16_t* taps,
            int16_t* words) {
    CentreRow<Lanes>(in, words, end + length);
    typename Lanes::I16 tapWords[length];
    for (int32_t k = 0; k < length; ++k) tapWords[k] = Lanes::Set(taps[k]);
    ForEachBlock<Lanes>(columns, [&](int32_t x, auto block) {
        const auto sum = [&](int32_t column) {
            auto total = Lanes::Load(orderedBias.words + column % patternPeriod);
            for (int32_t k = 0; k < length; ++k)
                total = Lanes::AddWrap(total, Lanes::MulHigh(Lanes::Load(words + column + k - before), tapWords[k]));
            return Lanes::template ShiftRight<5>(total);
        };
        block.Store(out + x, Lanes::Pack(sum(x), sum(x + Lanes::width)));
    });
    CopyRowEnds(in, out, columns, first, end);
}

/// The two samples that share a tap are added first; the shift brings their sum to the top of 16 bits.
template <class Lanes, int32_t firstTap>
void FirEvenFrom(const uint8_t* in, uint8_t* out, int32_t columns, int32_t first, int32_t end, const int16_t* taps,
                 int32_t rounding) {
    typename Lanes::I16 tapWords[8];
    for (int32_t j = firstTap; j < 8; ++j) tapWords[j] = Lanes::Set(taps[j]);
    ForEachBlock<Lanes>(columns, [&](int32_t x, auto block) {
        const auto sum = [&](const uint8_t* sample) {
            auto total = Lanes::Set(static_cast<int16_t>(rounding));
            for (int32_t j = firstTap; j < 8; ++j) {
                const auto pair = Lanes::AddWrap(Lanes::LoadU8(sample + j - 8), Lanes::LoadU8(sample + 7 - j));
                total = Lanes::AddWrap(total, Lanes::MulHigh(Lanes::template ShiftLeft<6>(pair), tapWords[j]));
            }
            return Lanes::template ShiftRight<3>(total);
        };
        block.Store(out + x, Lanes::Pack(sum(in + x), sum(in + x + Lanes::width)));
    });
    CopyRowEnds(in, out, columns, first, end);
}

template <class Lanes>
void FirEven(const uint8_t* in, uint8_t* out, int32_t columns, int32_t first, int32_t end, const int16_t* taps,
             int32_t rounding) {
    if (taps[0] != 0 || taps[1] != 0)
        FirEvenFrom<Lanes, 0>(in, out, columns, first, end, taps, rounding);
    else if (taps[2] != 0 || taps[3] != 0)
        FirEvenFrom<Lanes, 2>(in, out, columns, first, end, taps, rounding);
    else
        FirEvenFrom<Lanes, 4>(in, out, columns, first, end, taps, rounding);
}

}  // namespace
}  // namespace clarivex
