// The arithmetic of the output stages: tone curve, chroma gain, noise, ordered dither and overlay, in sixteenths.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "simd/blocks.inl"
#include "simd/chroma.inl"
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

/// Two registers of a row of words.
template <class Lanes>
Words<Lanes> LoadRow(const int16_t* row) {
    return {Lanes::Load(row), Lanes::Load(row + Lanes::width)};
}

/// A column pattern from a block on. Where its period fits into a block all blocks behind see the same words, which stay in
/// registers.
template <class Lanes>
class PatternWords {
public:
    PatternWords(const int16_t* pattern, int32_t x) : pattern(pattern), words(At(x)) {}

    Words<Lanes> operator()(int32_t x) const {
        if constexpr (blockLength<Lanes> % patternPeriod == 0) return words;
        return At(x);
    }

private:
    Words<Lanes> At(int32_t x) const {
        const auto at = [&](int32_t column) { return Lanes::Load(pattern + (column & (patternPeriod - 1))); };
        return {at(x), at(x + Lanes::width)};
    }

    const int16_t* pattern;
    Words<Lanes> words;
};

/// Noise of a row. Copied member by member: copied as a whole, a row that was just put together would be waited for until
/// all before it is done.
template <class Lanes>
class NoiseWords {
public:
    explicit NoiseWords(const GrainRow& grain) : row(grain.words), firstColumn(grain.firstColumn) {}

    Words<Lanes> operator()(int32_t x) const { return LoadRow<Lanes>(row + ((firstColumn + x) & (noisePeriod - 1))); }

private:
    const int16_t* row;
    int32_t firstColumn;
};

template <class Lanes>
Words<Lanes> Add(const Words<Lanes>& a, const Words<Lanes>& b) {
    return {Lanes::AddWrap(a.low, b.low), Lanes::AddWrap(a.high, b.high)};
}

template <class Lanes>
Words<Lanes> MulHigh(const Words<Lanes>& a, const Words<Lanes>& b) {
    return {Lanes::MulHigh(a.low, b.low), Lanes::MulHigh(a.high, b.high)};
}

/// Samples out of parts of them, 2 to the power of `bits`, limited to bytes.
template <class Lanes, int bits>
typename Lanes::U8 Finish(const Words<Lanes>& parts) {
    return Lanes::Pack(Lanes::template ShiftRight<bits>(parts.low), Lanes::template ShiftRight<bits>(parts.high));
}

/// Luma through its curve with the column pattern: sixteenths.
template <class Lanes>
class TonedLuma {
public:
    using Tone = LumaTone;

    TonedLuma(const LumaTone& tone, int32_t x) : curve(tone.curve), pattern(tone.pattern, x) {}

    template <class Block>
    Words<Lanes> operator()(const Block& block, const uint8_t* samples, int32_t x) const {
        const Words<Lanes> luma = block.LoadWords(samples);
        return Add<Lanes>({curve(luma.low), curve(luma.high)}, pattern(x));
    }

private:
    CurveWords<Lanes> curve;
    PatternWords<Lanes> pattern;
};

/// Chroma times its column's gain with the column pattern: sixteenths.
template <class Lanes>
class TonedChroma {
public:
    using Tone = ChromaTone;

    TonedChroma(const ChromaTone& tone, int32_t x) : gains(tone.gains, x), pattern(tone.pattern, x) {}

    template <class Block>
    Words<Lanes> operator()(const Block& block, const uint8_t* samples, int32_t x) const {
        const Words<Lanes> chroma = block.LoadWords(samples);
        const Words<Lanes> q{Lanes::template ShiftLeft<7>(chroma.low), Lanes::template ShiftLeft<7>(chroma.high)};
        return Add<Lanes>(MulHigh<Lanes>(q, gains(x)), pattern(x));
    }

private:
    PatternWords<Lanes> gains;
    PatternWords<Lanes> pattern;
};

/// Calls step(x, block, toned) as ForEachBlock does, with what the tone makes of blocks from there on. The last block may
/// begin within a pattern's period.
template <class Lanes, class Toned, class Step>
[[gnu::always_inline]] inline void ForEachTonedBlock(int32_t width, const typename Toned::Tone& tone,
                                                     const Step& step) {
    const int32_t whole = width - width % blockLength<Lanes>;
    const Toned toned(tone, 0);
    for (int32_t x = 0; x < whole; x += blockLength<Lanes>) step(x, WholeBlock<Lanes>{}, toned);
    if (whole == width) return;
    const int32_t last = std::max(width - blockLength<Lanes>, 0);
    const Toned tonedLast(tone, last);
    if (width >= blockLength<Lanes>)
        step(last, WholeBlock<Lanes>{}, tonedLast);
    else
        step(last, PartialBlock<Lanes>{width}, tonedLast);
}

template <class Lanes, class Toned>
void NoisyRow(const uint8_t* in, uint8_t* out, int32_t width, const typename Toned::Tone& tone, const GrainRow& grain) {
    const NoiseWords<Lanes> noise(grain);
    ForEachTonedBlock<Lanes, Toned>(width, tone, [&](int32_t x, auto block, const Toned& toned) {
        const Words<Lanes> video = toned(block, in + x, x);
        block.Store(out + x, Finish<Lanes, 4>(Add<Lanes>(video, noise(x))));
    });
}

/// The keep factor also halves, so that eighths remain.
template <class Lanes, class Toned>
void OverlaidRow(const uint8_t* in, uint8_t* out, int32_t width, const typename Toned::Tone& tone,
                 const GrainRow& grain, const OverlayRow& overlay) {
    const NoiseWords<Lanes> noise(grain);
    const OverlayRow terms{overlay.keep, overlay.terms, overlay.dither};
    ForEachTonedBlock<Lanes, Toned>(width, tone, [&](int32_t x, auto block, const Toned& toned) {
        const Words<Lanes> video = toned(block, in + x, x);
        const Words<Lanes> noisy = Add<Lanes>(video, noise(x));
        const Words<Lanes> kept = MulHigh<Lanes>(noisy, LoadRow<Lanes>(terms.keep + x));
        const auto samples = Finish<Lanes, 3>(Add<Lanes>(kept, PatternWords<Lanes>(terms.dither, x)(x)));
        block.Store(out + x, Lanes::AddBytes(samples, block.Load(terms.terms + x)));
    });
}

template <class Lanes>
void ToneLuma(const uint8_t* in, uint8_t* out, int32_t width, const LumaTone& tone, const GrainRow& grain) {
    NoisyRow<Lanes, TonedLuma<Lanes>>(in, out, width, tone, grain);
}

template <class Lanes>
void ToneLumaOverlay(const uint8_t* in, uint8_t* out, int32_t width, const LumaTone& tone, const GrainRow& grain,
                     const OverlayRow& overlay) {
    OverlaidRow<Lanes, TonedLuma<Lanes>>(in, out, width, tone, grain, overlay);
}

template <class Lanes>
void ToneChroma(const uint8_t* in, uint8_t* out, int32_t width, const ChromaTone& tone) {
    using Toned = TonedChroma<Lanes>;
    ForEachTonedBlock<Lanes, Toned>(width, tone, [&](int32_t x, auto block, const Toned& toned) {
        block.Store(out + x, Finish<Lanes, 4>(toned(block, in + x, x)));
    });
}

template <class Lanes>
void ToneChromaNoise(const uint8_t* in, uint8_t* out, int32_t width, const ChromaTone& tone, const GrainRow& grain) {
    NoisyRow<Lanes, TonedChroma<Lanes>>(in, out, width, tone, grain);
}

template <class Lanes>
void ToneChromaOverlay(const uint8_t* in, uint8_t* out, int32_t width, const ChromaTone& tone, const GrainRow& grain,
                       const OverlayRow& overlay) {
    OverlaidRow<Lanes, TonedChroma<Lanes>>(in, out, width, tone, grain, overlay);
}

/// Blocks of a packed row: two registers of luma, and one of each chroma plane for both.
template <class Lanes>
class PackedBlocks {
public:
    static constexpr int32_t length = 2 * blockLength<Lanes>;

    /// x  a column that all blocks begin a multiple of `length` behind
    PackedBlocks(const PackedTone& tone, int32_t x)
        : luma(tone.luma, x), chroma(tone.chroma, x), lumaNoise(tone.lumaGrain), chromaNoise(tone.chromaGrain) {}

    /// Leaves the chroma of `length` columns in `blended`, from pointers to their own samples.
    static void Blend(const uint8_t* const* chromaRows, uint8_t* blended) {
        Lanes::StoreInterleaved2(blended, BlendedRow<Lanes>(chromaRows[0], chromaRows[1]),
                                 BlendedRow<Lanes>(chromaRows[2], chromaRows[3]));
    }

    /// Makes columns x … x + length − 1 from pointers to their own samples.
    void Tone(const uint8_t* lumaRow, const uint8_t* blended, uint8_t* out, int32_t x) const {
        for (int32_t i = 0; i < length; i += blockLength<Lanes>)
            Lanes::StorePacked2(out + 2 * i, Noisy(luma, lumaNoise, lumaRow + i, x + i),
                                Noisy(chroma, chromaNoise, blended + i, x + i));
    }

private:
    template <class Toned>
    static typename Lanes::Pair Noisy(const Toned& toned, const NoiseWords<Lanes>& noise, const uint8_t* samples,
                                      int32_t x) {
        const Words<Lanes> parts = Add<Lanes>(toned(WholeBlock<Lanes>{}, samples, x), noise(x));
        return {Lanes::template ShiftRight<4>(parts.low), Lanes::template ShiftRight<4>(parts.high)};
    }

    TonedLuma<Lanes> luma;
    TonedChroma<Lanes> chroma;
    NoiseWords<Lanes> lumaNoise;
    NoiseWords<Lanes> chromaNoise;
};

/// A row shorter than a block goes through copies.
template <class Lanes>
void TonePackedShortRow(const uint8_t* luma, const uint8_t* const* chroma, uint8_t* out, int32_t width,
                        const PackedTone& tone) {
    constexpr int32_t length = PackedBlocks<Lanes>::length;
    uint8_t lumaCopy[length] = {}, chromaCopies[4][length / 2] = {}, packed[2 * length];
    std::memcpy(lumaCopy, luma, static_cast<size_t>(width));
    const uint8_t* rows[4];
    for (int32_t i = 0; i < 4; ++i) {
        std::memcpy(chromaCopies[i], chroma[i], static_cast<size_t>(width / 2));
        rows[i] = chromaCopies[i];
    }
    uint8_t blended[length];
    PackedBlocks<Lanes>::Blend(rows, blended);
    PackedBlocks<Lanes>(tone, 0).Tone(lumaCopy, blended, packed, 0);
    std::memcpy(out, packed, 2 * static_cast<size_t>(width));
}

template <class Lanes>
void TonePackedRow(const uint8_t* luma, const uint8_t* const* chroma, uint8_t* out, int32_t width,
                   const PackedTone& tone) {
    constexpr int32_t length = PackedBlocks<Lanes>::length;
    if (width < length) return TonePackedShortRow<Lanes>(luma, chroma, out, width, tone);
    const uint8_t* const rows[4] = {chroma[0], chroma[1], chroma[2], chroma[3]};
    uint8_t blended[8 * length];  // some blocks ahead, so that toning finds them stored
    const auto blend = [&](int32_t x, uint8_t * to) __attribute__((always_inline)) {
        const uint8_t* const from[4] = {rows[0] + x / 2, rows[1] + x / 2, rows[2] + x / 2, rows[3] + x / 2};
        PackedBlocks<Lanes>::Blend(from, to);
    };
    const PackedBlocks<Lanes> blocks(tone, 0);
    const int32_t whole = width - width % length;
    for (int32_t begin = 0; begin < whole; begin += static_cast<int32_t>(sizeof blended)) {
        const int32_t end = std::min(begin + static_cast<int32_t>(sizeof blended), whole);
        for (int32_t x = begin; x < end; x += length) blend(x, blended + (x - begin));
        for (int32_t x = begin; x < end; x += length) blocks.Tone(luma + x, blended + (x - begin), out + 2 * x, x);
    }
    if (whole == width) return;
    const int32_t last = width - length;
    blend(last, blended);
    PackedBlocks<Lanes>(tone, last).Tone(luma + last, blended, out + 2 * last, last);
}

}  // namespace
}  // namespace clarivex
