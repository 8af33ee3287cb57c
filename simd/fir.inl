// Short filters along a row, on centred words, with an ordered rounding that breaks up contours.
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

/// 127.5 × 32, the mid-grey that centring took away, plus and minus 8.
constexpr BiasPattern MakeOrderedBias() {
    BiasPattern pattern{};
    for (int32_t x = 0; x < patternLength; ++x) pattern.words[x] = x % 2 == 0 ? 4088 : 4072;
    return pattern;
}
alignas(64) constexpr BiasPattern orderedBias = MakeOrderedBias();

/// Samples at both ends of a row that the filter leaves as they are.
inline void CopyRowEnds(const uint8_t* in, uint8_t* out, const FirSpan& span) {
    const int32_t head = span.first < span.columns ? span.first : span.columns;
    std::memcpy(out, in, static_cast<size_t>(head));
    const int32_t tail = span.end > head ? span.end : head;
    if (tail < span.columns) std::memcpy(out + tail, in + tail, static_cast<size_t>(span.columns - tail));
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
void FirRow(const uint8_t* in, uint8_t* out, const FirSpan& span, const int16_t* taps, int16_t* words) {
    CentreRow<Lanes>(in, words, span.end + length);
    typename Lanes::I16 tapWords[length];
    for (int32_t k = 0; k < length; ++k) tapWords[k] = Lanes::Set(taps[k]);
    ForEachBlock<Lanes>(span.columns, [&](int32_t x, auto block) {
        const auto sum = [&](int32_t column) {
            auto total = Lanes::Load(orderedBias.words + column % patternPeriod);
            for (int32_t k = 0; k < length; ++k)
                total = Lanes::AddWrap(total, Lanes::MulHigh(Lanes::Load(words + column + k - before), tapWords[k]));
            return Lanes::template ShiftRight<5>(total);
        };
        block.Store(out + x, Lanes::Pack(sum(x), sum(x + Lanes::width)));
    });
    CopyRowEnds(in, out, span);
}

}  // namespace
}  // namespace clarivex
