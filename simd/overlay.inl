// The overlay's pixels: coverage painted in one colour, and painted pixels brought into the form that is blended into the
// video. Pixels stand as four bytes T, Y, U, V; inside, lanes hold one of the four of many pixels.
#pragma once

#include <cstdint>
#include <cstring>

#include "simd/blocks.inl"

namespace clarivex {
namespace {

constexpr int32_t overlayPixelBytes = 4;

/// A register each of transparency, luma and chroma of Lanes::width pixels.
template <class Lanes>
struct PixelWords {
    typename Lanes::I16 t, y, u, v;
};

template <class Lanes>
PixelWords<Lanes> LoadPixels(const uint8_t* pixels) {
    const auto first = Lanes::LoadBytes(pixels);
    const auto second = Lanes::LoadBytes(pixels + blockLength<Lanes>);
    const auto evens = Lanes::Pack(Lanes::EvenBytes(first), Lanes::EvenBytes(second));  // T and U
    const auto odds = Lanes::Pack(Lanes::OddBytes(first), Lanes::OddBytes(second));     // Y and V
    return {Lanes::EvenBytes(evens), Lanes::EvenBytes(odds), Lanes::OddBytes(evens), Lanes::OddBytes(odds)};
}

/// Limits the words to bytes.
template <class Lanes>
void StorePixels(uint8_t* pixels, const PixelWords<Lanes>& words) {
    Lanes::StoreInterleaved2(pixels, Lanes::PackInterleaved(words.t, words.u),
                             Lanes::PackInterleaved(words.y, words.v));
}

/// One colour over pixels. Remaining transparency and colour terms have 4 bits behind the point; none of the sums leaves
/// 16 bits: |P| is below 8192, and so is the product, as |c − base| is at most 256.
template <class Lanes>
class CoveragePainter {
public:
    explicit CoveragePainter(const int16_t* colour)
        : t(Lanes::Set(colour[0])), y(Lanes::Set(colour[1])), u(Lanes::Set(colour[2])), v(Lanes::Set(colour[3])) {}

    void Paint(const uint8_t* coverage, uint8_t* pixels) const {
        const auto cover = Lanes::template ShiftLeft<6>(Lanes::LoadU8(coverage));
        const PixelWords<Lanes> below = LoadPixels<Lanes>(pixels);
        const auto left = Term(cover, t, 4095);
        const auto keep = Lanes::template ShiftLeft<1>(left);
        StorePixels<Lanes>(
            pixels, {Over(below.t, 256, keep, left), Over(below.y, 16, keep, Term(cover, y, 264)),
                     Over(below.u, 128, keep, Term(cover, u, 2056)), Over(below.v, 128, keep, Term(cover, v, 2056))});
    }

private:
    using I16 = typename Lanes::I16;

    static I16 Term(I16 cover, I16 colour, int16_t rounding) {
        return Lanes::AddWrap(Lanes::MulHigh(cover, colour), Lanes::Set(rounding));
    }

    /// (((below − base) · keep / 2 >> 8) + term) >> 4: 128 times the one and twice the other leave 1/256 in the high word.
    static I16 Over(I16 below, int16_t base, I16 keep, I16 term) {
        const auto distance = Lanes::template ShiftLeft<7>(Lanes::SubWrap(below, Lanes::Set(base)));
        return Lanes::template ShiftRight<4>(Lanes::AddWrap(Lanes::MulHigh(distance, keep), term));
    }

    I16 t, y, u, v;
};

template <class Lanes>
void PaintCoverage(const uint8_t* coverage, const int16_t* colour, uint8_t* pixels, int32_t width) {
    const CoveragePainter<Lanes> painter(colour);
    int32_t x = 0;
    for (; x + Lanes::width <= width; x += Lanes::width) painter.Paint(coverage + x, pixels + x * overlayPixelBytes);
    if (x >= width) return;
    uint8_t coverageCopy[Lanes::width] = {};
    uint8_t pixelsCopy[Lanes::width * overlayPixelBytes] = {};
    const auto rest = static_cast<size_t>(width - x);
    std::memcpy(coverageCopy, coverage + x, rest);
    std::memcpy(pixelsCopy, pixels + x * overlayPixelBytes, rest * overlayPixelBytes);
    painter.Paint(coverageCopy, pixelsCopy);
    std::memcpy(pixels + x * overlayPixelBytes, pixelsCopy, rest * overlayPixelBytes);
}

constexpr int32_t tileGroupPixels = 8;
constexpr int32_t tileGroupBytes = 3 * tileGroupPixels;

/// Roundings of the chroma terms by pixel pair: U reads from the first entry on, V from the second.
struct ChromaRoundings {
    int16_t words[64 + 2] = {};

    constexpr ChromaRoundings() {
        bool second = false;
        for (int16_t& word : words) {
            word = second ? 96 : 32;
            second = !second;
        }
    }
};
constexpr ChromaRoundings chromaRoundings;

/// The bytes of some tile groups, each kind in the order of its pixels.
///
/// step    pixels that are turned into terms together, even ones apart from odd ones
/// length  pixels of the block, whole groups
template <class Lanes>
struct TileBlock {
    static constexpr int32_t step = blockLength<Lanes>;
    static constexpr int32_t length = step > tileGroupPixels ? step : tileGroupPixels;
    static constexpr int32_t groups = length / tileGroupPixels;

    uint8_t luma[length];
    uint8_t keep[length];
    uint8_t chroma[length];
};

/// Terms of pixels: what they add to the video, and the share of it that they keep.
template <class Lanes>
class TileTerms {
public:
    explicit TileTerms(bool oddRow) : lumaEven(oddRow ? 16 : 48), lumaOdd(oddRow ? 48 : 16) {}

    void Make(const uint8_t* pixels, TileBlock<Lanes>& block) const {
        for (int32_t x = 0; x < block.length; x += block.step) MakeStep(pixels + x * overlayPixelBytes, x, block);
    }

private:
    using I16 = typename Lanes::I16;
    struct EvenOdd {
        I16 even, odd;
    };

    void MakeStep(const uint8_t* pixels, int32_t x, TileBlock<Lanes>& block) const {
        const PixelWords<Lanes> low = LoadPixels<Lanes>(pixels);
        const PixelWords<Lanes> high = LoadPixels<Lanes>(pixels + Lanes::width * overlayPixelBytes);
        const EvenOdd y = Split(low.y, high.y);
        const EvenOdd t = Split(low.t, high.t);
        const EvenOdd a{Expand(t.even), Expand(t.odd)};
        Lanes::StoreBytes(block.luma + x,
                          Lanes::PackInterleaved(Luma(y.even, a.even, lumaEven), Luma(y.odd, a.odd, lumaOdd)));
        Lanes::StoreBytes(block.keep + x, Lanes::PackInterleaved(Keep(a.even, lumaOdd), Keep(a.odd, lumaEven)));

        const I16 mean = Lanes::template ShiftRightLogical<1>(Lanes::AddWrap(a.even, a.odd));
        const int16_t* rounding = chromaRoundings.words + x / 2 % 2;
        const I16 u = Chroma(Split(low.u, high.u), mean, rounding);
        const I16 v = Chroma(Split(low.v, high.v), mean, rounding + 1);
        Lanes::StoreBytes(block.chroma + x, Lanes::PackInterleaved(u, v));
    }

    static EvenOdd Split(I16 low, I16 high) {
        const auto bytes = Lanes::Pack(low, high);
        return {Lanes::EvenBytes(bytes), Lanes::OddBytes(bytes)};
    }

    /// A transparency in 15 bits, 255 as 32767.
    static I16 Expand(I16 t) {
        return Lanes::AddWrap(Lanes::template ShiftLeft<7>(t), Lanes::template ShiftRight<1>(t));
    }

    static I16 Luma(I16 y, I16 a, int16_t dither) {
        const I16 offset = Lanes::AddWrap(Lanes::MulHigh(a, Lanes::Set(-2048)), Lanes::Set(dither));
        return Lanes::AddWrap(y, Lanes::template ShiftRight<6>(offset));
    }

    static I16 Keep(I16 a, int16_t dither) {
        return Lanes::template ShiftRight<6>(Lanes::AddWrap(Lanes::MulHigh(a, Lanes::Set(32640)), Lanes::Set(dither)));
    }

    /// Of pixel pairs; the average is rounded up.
    static I16 Chroma(EvenOdd c, I16 a, const int16_t* rounding) {
        const I16 average = Lanes::template ShiftRight<1>(Lanes::AddWrap(Lanes::AddWrap(c.even, c.odd), Lanes::Set(1)));
        const I16 offset = Lanes::AddWrap(Lanes::MulHigh(a, Lanes::Set(INT16_MIN)), Lanes::Load(rounding));
        return Lanes::AddWrap(average, Lanes::template ShiftRight<7>(offset));
    }

    /// Dithers of luma; those of the keep factor are exchanged.
    int16_t lumaEven, lumaOdd;
};

template <class Lanes>
void StoreTileGroups(const TileBlock<Lanes>& block, uint8_t* groups, int32_t count) {
    for (int32_t x = 0; x < count * tileGroupPixels; x += tileGroupPixels, groups += tileGroupBytes) {
        std::memcpy(groups, block.luma + x, tileGroupPixels);
        std::memcpy(groups + tileGroupPixels, block.keep + x, tileGroupPixels);
        std::memcpy(groups + 2 * tileGroupPixels, block.chroma + x, tileGroupPixels);
    }
}

template <class Lanes>
void PackTileRow(const uint8_t* pixels, uint8_t* tileGroups, int32_t groups, bool oddRow) {
    using Block = TileBlock<Lanes>;
    constexpr int32_t groupPixelBytes = tileGroupPixels * overlayPixelBytes;
    const TileTerms<Lanes> terms(oddRow);
    Block block;
    int32_t g = 0;
    for (; g + Block::groups <= groups; g += Block::groups) {
        terms.Make(pixels + g * groupPixelBytes, block);
        StoreTileGroups(block, tileGroups + g * tileGroupBytes, Block::groups);
    }
    if (g >= groups) return;
    uint8_t copy[Block::length * overlayPixelBytes] = {};
    std::memcpy(copy, pixels + g * groupPixelBytes, static_cast<size_t>(groups - g) * groupPixelBytes);
    terms.Make(copy, block);
    StoreTileGroups(block, tileGroups + g * tileGroupBytes, groups - g);
}

}  // namespace
}  // namespace clarivex
