// The tone of luma for lanes that look up bytes: the curve is worked out once a frame.
#pragma once

#include <cstdint>

#include "simd/tone.inl"

namespace clarivex {
namespace {

template <class Lanes>
void TabulateLuma(const LumaCurve& curve, uint8_t* table) {
    const CurveWords<Lanes> words(curve);
    int16_t values[Lanes::width];
    for (int32_t luma = 0; luma < 256; ++luma) {
        if (luma % Lanes::width == 0) {
            for (int32_t i = 0; i < Lanes::width; ++i) values[i] = static_cast<int16_t>(luma + i);
            Lanes::Store(values, words(Lanes::Load(values)));
        }
        const auto value = static_cast<uint16_t>(values[luma % Lanes::width]);
        table[luma] = static_cast<uint8_t>(value & 255);
        table[256 + luma] = static_cast<uint8_t>(value >> 8);
    }
}

/// As TonedLuma.
template <class Lanes>
class TabledLuma {
public:
    using Tone = LumaTone;

    TabledLuma(const LumaTone& tone, int32_t x) : table(Lanes::LoadWordTable(tone.table)), pattern(tone.pattern, x) {}

    template <class Block>
    Words<Lanes> operator()(const Block& block, const uint8_t* luma, int32_t x) const {
        Words<Lanes> toned;
        Lanes::LookUp(table, block.Load(luma), toned.low, toned.high);
        return Add<Lanes>(toned, pattern(x));
    }

private:
    typename Lanes::WordTable table;
    PatternWords<Lanes> pattern;
};

template <class Lanes>
void ToneLumaByTable(const uint8_t* in, uint8_t* out, int32_t width, const LumaTone& tone, const GrainRow& grain) {
    NoisyRow<Lanes, TabledLuma<Lanes>>(in, out, width, tone, grain);
}

}  // namespace
}  // namespace clarivex
