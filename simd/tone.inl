// The arithmetic of the output stages: tone curve, chroma gain, noise, ordered dither and overlay, in sixteenths.
#pragma once

#include <cstdint>

#include "simd/blocks.inl"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

template <class Lanes>
struct CurveWords {
    typename Lanes::I16 c3, c2, c1;

    explicit CurveWords(const LumaCurve& curve)
        : c3(Lanes::Set(curve.c3)), c2(Lanes::Set(curve.c2)), c1(Lanes::Set(curve.c1)) {}

    typename Lanes::I16 operator()(typename Lanes::I16 luma) const {
        const auto q = Lanes::template ShiftLeft<7>(luma);
        auto t = Lanes::MulHigh(q, c3);
        t = Lanes::AddWrap(t, t);
        t = Lanes::template ShiftLeft<2>(Lanes::MulHigh(Lanes::AddWrap(t, c2), q));
        return Lanes::MulHigh(Lanes::AddWrap(t, c1), q);
    }
};

/// Noise words of a block; the table's rows repeat their first 64 entries, so a block never wraps inside.
inline const int16_t* NoiseAt(const int16_t* noise, int32_t noiseStart, int32_t x) {
    return noise + ((noiseStart + x) & 255);
}

/// Adds column pattern and noise.
template <class Lanes>
typename Lanes::I16 Dither(typename Lanes::I16 value, const int16_t* pattern, const int16_t* noise) {
    return Lanes::AddWrap(Lanes::AddWrap(value, Lanes::Load(pattern)), Lanes::Load(noise));
}

/// Sixteenths to words of samples; packing limits them.
template <class Lanes>
typename Lanes::I16 Finish(typename Lanes::I16 sixteenths) {
    return Lanes::template ShiftRight<4>(sixteenths);
}

/// Scales by the keep factor, which also halves, so that eighths remain.
template <class Lanes>
typename Lanes::I16 FinishKept(typename Lanes::I16 sixteenths, const int16_t* keep, const int16_t* dither) {
    const auto eighths = Lanes::MulHigh(sixteenths, Lanes::Load(keep));
    return Lanes::template ShiftRight<3>(Lanes::AddWrap(eighths, Lanes::Load(dither)));
}

/// A row through `value` (words of samples to sixteenths), then pattern and noise.
template <class Lanes, class Value>
void NoisyRow(const uint8_t* in, uint8_t* out, int32_t width, const int16_t* pattern, const int16_t* noise,
              int32_t noiseStart, Value value) {
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const Words<Lanes> samples = block.LoadWords(in + x);
        const int16_t* columns = pattern + x % patternPeriod;
        const int16_t* grain = NoiseAt(noise, noiseStart, x);
        const auto low = Dither<Lanes>(value(samples.low, x), columns, grain);
        const auto high =
            Dither<Lanes>(value(samples.high, x + Lanes::width), columns + Lanes::width, grain + Lanes::width);
        block.Store(out + x, Lanes::Pack(Finish<Lanes>(low), Finish<Lanes>(high)));
    });
}

/// The same under an overlay: keep factors and terms of one row.
template <class Lanes, class Value>
void OverlaidRow(const uint8_t* in, uint8_t* out, int32_t width, const int16_t* pattern, const int16_t* noise,
                 int32_t noiseStart, const int16_t* keep, const uint8_t* term, const int16_t* dither, Value value) {
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const Words<Lanes> samples = block.LoadWords(in + x);
        const int32_t column = x % patternPeriod;
        const int16_t* grain = NoiseAt(noise, noiseStart, x);
        const auto low = Dither<Lanes>(value(samples.low, x), pattern + column, grain);
        const auto high =
            Dither<Lanes>(value(samples.high, x + Lanes::width), pattern + column + Lanes::width, grain + Lanes::width);
        const auto kept = Lanes::Pack(FinishKept<Lanes>(low, keep + x, dither + column),
                                      FinishKept<Lanes>(high, keep + x + Lanes::width, dither + column + Lanes::width));
        block.Store(out + x, Lanes::AddBytes(kept, block.Load(term + x)));
    });
}

template <class Lanes>
void ToneLuma(const uint8_t* in, uint8_t* out, int32_t width, const LumaCurve& curve, const int16_t* pattern,
              const int16_t* noise, int32_t noiseStart) {
    const CurveWords<Lanes> tone(curve);
    NoisyRow<Lanes>(in, out, width, pattern, noise, noiseStart,
                    [&](typename Lanes::I16 luma, int32_t) { return tone(luma); });
}

template <class Lanes>
void ToneLumaOverlay(const uint8_t* in, uint8_t* out, int32_t width, const LumaCurve& curve, const int16_t* pattern,
                     const int16_t* noise, int32_t noiseStart, const int16_t* keep, const uint8_t* term,
                     const int16_t* dither) {
    const CurveWords<Lanes> tone(curve);
    OverlaidRow<Lanes>(in, out, width, pattern, noise, noiseStart, keep, term, dither,
                       [&](typename Lanes::I16 luma, int32_t) { return tone(luma); });
}

/// Chroma samples times their column's gain.
template <class Lanes>
typename Lanes::I16 ScaleChroma(typename Lanes::I16 chroma, const int16_t* gain, int32_t x) {
    return Lanes::MulHigh(Lanes::template ShiftLeft<7>(chroma), Lanes::Load(gain + x % patternPeriod));
}

template <class Lanes>
void ToneChroma(const uint8_t* in, uint8_t* out, int32_t width, const int16_t* gain, const int16_t* pattern) {
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const Words<Lanes> samples = block.LoadWords(in + x);
        const auto value = [&](typename Lanes::I16 chroma, int32_t column) {
            const auto scaled = ScaleChroma<Lanes>(chroma, gain, column);
            return Finish<Lanes>(Lanes::AddWrap(scaled, Lanes::Load(pattern + column % patternPeriod)));
        };
        block.Store(out + x, Lanes::Pack(value(samples.low, x), value(samples.high, x + Lanes::width)));
    });
}

template <class Lanes>
void ToneChromaNoise(const uint8_t* in, uint8_t* out, int32_t width, const int16_t* gain, const int16_t* pattern,
                     const int16_t* noise, int32_t noiseStart) {
    NoisyRow<Lanes>(in, out, width, pattern, noise, noiseStart,
                    [&](typename Lanes::I16 chroma, int32_t x) { return ScaleChroma<Lanes>(chroma, gain, x); });
}

template <class Lanes>
void ToneChromaOverlay(const uint8_t* in, uint8_t* out, int32_t width, const int16_t* gain, const int16_t* pattern,
                       const int16_t* noise, int32_t noiseStart, const int16_t* keep, const uint8_t* term,
                       const int16_t* dither) {
    OverlaidRow<Lanes>(in, out, width, pattern, noise, noiseStart, keep, term, dither,
                       [&](typename Lanes::I16 chroma, int32_t x) { return ScaleChroma<Lanes>(chroma, gain, x); });
}

}  // namespace
}  // namespace clarivex
