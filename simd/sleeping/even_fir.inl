// Even filters along a row, around the place between two samples. The plug-in never asks for them.
#pragma once

#include <cstdint>

#include "simd/fir.inl"

namespace clarivex {
namespace {

/// The two samples that share a tap are added first; the shift brings their sum to the top of 16 bits.
template <class Lanes, int32_t firstTap>
void FirEvenFrom(const uint8_t* in, uint8_t* out, const FirSpan& span, const int16_t* taps, int32_t rounding) {
    typename Lanes::I16 tapWords[8];
    for (int32_t j = firstTap; j < 8; ++j) tapWords[j] = Lanes::Set(taps[j]);
    ForEachBlock<Lanes>(span.columns, [&](int32_t x, auto block) {
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
    CopyRowEnds(in, out, span);
}

template <class Lanes>
void FirEven(const uint8_t* in, uint8_t* out, const FirSpan& span, const int16_t* taps, int32_t rounding) {
    if (taps[0] != 0 || taps[1] != 0)
        FirEvenFrom<Lanes, 0>(in, out, span, taps, rounding);
    else if (taps[2] != 0 || taps[3] != 0)
        FirEvenFrom<Lanes, 2>(in, out, span, taps, rounding);
    else
        FirEvenFrom<Lanes, 4>(in, out, span, taps, rounding);
}

}  // namespace
}  // namespace clarivex
