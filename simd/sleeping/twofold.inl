// The twofold enlargement, which the plug-in never asks for: two phases of eight taps in 32-bit sums, 16-bit samples
// between its passes, what works on such samples, and its chroma.
//
// A wide word is an 8-bit sample times 64, 0 … 65535, less 32768, so that signed products take it.
#pragma once

#include <cstdint>

#include "simd/blocks.inl"
#include "simd/chroma.inl"
#include "simd/edge.inl"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

constexpr int32_t wideBias = 32768;

/// Taps by pairs, as pair products take them.
template <class Lanes, int32_t length>
struct TapPairs {
    typename Lanes::TapPair pairs[length / 2];

    explicit TapPairs(const int16_t* taps) {
        for (int32_t i = 0; i < length / 2; ++i) pairs[i] = Lanes::MakeTapPair(taps[2 * i], taps[2 * i + 1]);
    }
};

/// Both phases of a register of 8-bit samples.
template <class Lanes>
class Doubler {
public:
    Doubler(const int16_t* taps, int32_t constantOfSums)
        : first(taps), second(Mirror(taps).taps), constant(Lanes::SetSums(constantOfSums)) {}

    /// The sums of the outputs 2x and 2x + 1 around the samples at `in`.
    void operator()(const uint8_t* in, typename Lanes::Sums& even, typename Lanes::Sums& odd) const {
        even = odd = constant;
        auto left = Lanes::LoadU8(in - 4);
        for (int32_t i = 0; i < 4; ++i) {
            const auto middle = Lanes::LoadU8(in - 3 + 2 * i);
            const auto right = Lanes::LoadU8(in - 2 + 2 * i);
            even = Lanes::AddProducts(even, left, middle, first.pairs[i]);
            odd = Lanes::AddProducts(odd, middle, right, second.pairs[i]);
            left = right;
        }
    }

private:
    struct Mirror {
        int16_t taps[8];
        explicit Mirror(const int16_t* original) {
            for (int32_t k = 0; k < 8; ++k) taps[k] = original[7 - k];
        }
    };

    TapPairs<Lanes, 8> first, second;
    typename Lanes::Sums constant;
};

template <class Lanes>
void DoubleRow(const uint8_t* in, const int16_t* taps, uint8_t* out, int32_t width) {
    const Doubler<Lanes> doubler(taps, 8192);
    const auto words = [](typename Lanes::Sums sums) { return Lanes::PackSums(Lanes::template ShiftSums<14>(sums)); };
    for (int32_t x = 0; x < width; x += blockLength<Lanes>) {
        typename Lanes::Sums lowEven, lowOdd, highEven, highOdd;
        doubler(in + x, lowEven, lowOdd);
        doubler(in + x + Lanes::width, highEven, highOdd);
        Lanes::StoreInterleaved2(out + 2 * x, Lanes::Pack(words(lowEven), words(highEven)),
                                 Lanes::Pack(words(lowOdd), words(highOdd)));
    }
}

template <class Lanes>
void DoubleRowWide(const uint8_t* in, const int16_t* taps, int16_t* out, int32_t width) {
    const Doubler<Lanes> doubler(taps, 128 - (wideBias << 8));
    const auto words = [](typename Lanes::Sums sums) { return Lanes::PackSums(Lanes::template ShiftSums<8>(sums)); };
    for (int32_t x = 0; x < width; x += Lanes::width) {
        typename Lanes::Sums even, odd;
        doubler(in + x, even, odd);
        Lanes::StoreInterleavedWords(out + 2 * x, words(even), words(odd));
    }
}

/// One row out of `length` rows of wide words: (Σ taps[k] · rows[k] + rounding) >> shift.
template <class Lanes, int32_t length, int32_t shift>
void WeighRows(const int16_t* const* rows, const int16_t* taps, int32_t rounding, int16_t* out, int32_t width) {
    int32_t sumOfTaps = 0;
    for (int32_t k = 0; k < length; ++k) sumOfTaps += taps[k];
    // What the bias leaves in the sum: nothing for taps of unit gain.
    const auto bias = static_cast<int32_t>(static_cast<uint32_t>(sumOfTaps - (1 << shift)) * wideBias);
    const auto constant = Lanes::AddSums(Lanes::SetSums(rounding), Lanes::SetSums(bias));
    const TapPairs<Lanes, length> weights(taps);
    for (int32_t x = 0; x < width; x += Lanes::width) {
        auto sums = constant;
        for (int32_t i = 0; i < length / 2; ++i)
            sums = Lanes::AddProducts(sums, Lanes::Load(rows[2 * i] + x), Lanes::Load(rows[2 * i + 1] + x),
                                      weights.pairs[i]);
        Lanes::Store(out + x, Lanes::PackSums(Lanes::template ShiftSums<shift>(sums)));
    }
}

template <class Lanes>
void DoubleColumnsWide(const int16_t* const* rows, const int16_t* taps, int16_t* out, int32_t width) {
    WeighRows<Lanes, 8, 14>(rows, taps, 8192, out, width);
}

template <class Lanes>
void FirWide(const int16_t* const* rows, const int16_t* taps, int16_t* out, int32_t width) {
    const auto unused = [&](int32_t k) { return taps[k] == 0 && taps[15 - k] == 0; };
    if (!unused(0) || !unused(1))
        WeighRows<Lanes, 16, 13>(rows, taps, 0, out, width);
    else if (!unused(2) || !unused(3))
        WeighRows<Lanes, 12, 13>(rows + 2, taps + 2, 0, out, width);
    else
        WeighRows<Lanes, 8, 13>(rows + 4, taps + 4, 0, out, width);
}

/// Limits as they usually are: the dead zone can be taken off before the gain, and no wide difference reaches its limit.
inline bool AreUsualWideEdges(const EdgeLimits& limits) {
    return limits.gain > 0 && 64 * limits.deadZone % limits.gain == 0 &&
           64 * limits.deadZone / limits.gain <= INT16_MAX && limits.outerWeight > 0 && limits.outerWeight < 128;
}

/// The full edge limiter with all its values times 64. Differences of two samples are limited to 16 bits, which samples of
/// 0 … 255 times 64 never reach, and differences of the wider neighbourhood to 24.
template <class Lanes, bool usual>
class WideEdges {
public:
    explicit WideEdges(const EdgeLimits& limits)
        : gain(Lanes::MakeTapPair(limits.gain, 32)),
          gainAlone(Lanes::MakeTapPair(limits.gain, 0)),
          sampleZone(usual ? static_cast<int16_t>(64 * limits.deadZone / limits.gain) : int16_t{0}),
          zone(64 * limits.deadZone),
          outerWeights(Lanes::MakeTapPair(64, Word(64 - limits.outerWeight))),
          slope(limits.slope),
          minusSlope(Word(-limits.slope)),
          offset(Lanes::SetSums(64 * limits.offset)),
          margin(Lanes::Set(InWideUnits(limits.margin))) {}

    typename Lanes::I16 operator()(const int16_t* const* rows, int32_t x) const {
        const I16 centre = Lanes::Load(rows[0] + x);
        const I16 left = Lanes::Load(rows[1] + x);
        const I16 right = Lanes::Load(rows[2] + x);
        const I16 left3 = Lanes::Load(rows[3] + x);
        const I16 right3 = Lanes::Load(rows[4] + x);
        const I16 most = Lanes::Max(Lanes::Max(left, right), centre);
        const I16 least = Lanes::Min(Lanes::Min(left, right), centre);
        const I16 above = Lanes::SubSat(Lanes::Max(left3, right3), centre);
        const I16 below = Lanes::SubSat(Lanes::Min(left3, right3), centre);
        const I16 upper = Lanes::AddSat(most, Allowance(above, below, minusSlope));
        const I16 lower = Lanes::SubSat(least, Allowance(below, above, slope));
        const I16 measure = Lanes::AddSat(Lanes::SubSat(centre, left), Lanes::SubSat(centre, right));
        return Lanes::Min(Lanes::Max(Sharpen(centre, measure), lower), upper);
    }

private:
    using I16 = typename Lanes::I16;

    static int16_t Word(int32_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }

    static int16_t InWideUnits(int32_t margin) {
        if (margin < INT16_MIN / 64) return INT16_MIN;
        return margin > INT16_MAX / 64 ? INT16_MAX : Word(64 * margin);
    }

    I16 Sharpen(I16 centre, I16 measure) const {
        typename Lanes::Sums sums;
        if constexpr (usual) {
            const I16 cored = Core<Lanes>(measure, Lanes::Set(sampleZone), Lanes::Set(Word(-sampleZone)));
            sums = Lanes::AddProducts(Lanes::SetSums(16), cored, centre, gain);
        } else {
            const auto detail = Lanes::AddProducts(Lanes::SetSums(0), measure, centre, gainAlone);
            const auto within = Lanes::MinSums(Lanes::MaxSums(detail, Lanes::SetSums(-zone)), Lanes::SetSums(zone));
            const auto cored = Lanes::AddSums(Lanes::SubSums(detail, within), Lanes::SetSums(16));
            sums = Lanes::AddProducts(cored, centre, centre, Lanes::MakeTapPair(32, 0));
        }
        return Lanes::PackSums(Lanes::template ShiftSums<5>(sums));
    }

    /// How far a sample may pass the local extreme, by the wide difference of UsualEdges.
    I16 Allowance(I16 sameSide, I16 otherSide, int16_t factor) const {
        auto edge = Lanes::AddProducts(Lanes::SetSums(0), sameSide, otherSide, outerWeights);
        if constexpr (!usual)
            edge = Lanes::MinSums(Lanes::MaxSums(edge, Lanes::SetSums(-(1 << 23))), Lanes::SetSums((1 << 23) - 1));
        const auto rise = Lanes::AddSums(Lanes::MulHighSums(edge, factor), offset);
        return Lanes::AddSat(Lanes::Max(Lanes::PackSums(rise), Lanes::Set(0)), margin);
    }

    typename Lanes::TapPair gain, gainAlone;
    int16_t sampleZone;
    int32_t zone;
    typename Lanes::TapPair outerWeights;
    int16_t slope, minusSlope;
    typename Lanes::Sums offset;
    I16 margin;
};

template <class Lanes, bool usual>
void LimitEdgesWideWith(const int16_t* const* rows, int16_t* out, int32_t width, const EdgeLimits& limits) {
    const WideEdges<Lanes, usual> edges(limits);
    for (int32_t x = 0; x < width; x += Lanes::width) Lanes::Store(out + x, edges(rows, x));
}

template <class Lanes>
void LimitEdgesWide(const int16_t* const* rows, int16_t* out, int32_t width, const EdgeLimits& limits) {
    if (AreUsualWideEdges(limits))
        LimitEdgesWideWith<Lanes, true>(rows, out, width, limits);
    else
        LimitEdgesWideWith<Lanes, false>(rows, out, width, limits);
}

template <class Lanes>
void NarrowRow(const int16_t* words, uint8_t* out, int32_t width) {
    const auto samples = [&](int32_t x) {
        return Lanes::template ShiftRightLogical<6>(
            Lanes::AddWrap(Lanes::Load(words + x), Lanes::Set(static_cast<int16_t>(-wideBias))));
    };
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        block.Store(out + x, Lanes::Pack(samples(x), samples(x + Lanes::width)));
    });
}

/// a pulled towards b by weight / 32768, rounded down.
template <class Lanes>
typename Lanes::I16 Pull(typename Lanes::I16 a, typename Lanes::I16 b, typename Lanes::I16 weight) {
    const auto distance = Lanes::SubWrap(b, a);
    return Lanes::AddWrap(a, Lanes::MulHigh(Lanes::AddWrap(distance, distance), weight));
}

template <class Lanes>
void PullRow(const uint8_t* row, const uint8_t* towards, int16_t weight, uint8_t* out, int32_t width) {
    const auto weights = Lanes::Set(weight);
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const Words<Lanes> from = block.LoadWords(row + x);
        const Words<Lanes> to = block.LoadWords(towards + x);
        block.Store(out + x,
                    Lanes::Pack(Pull<Lanes>(from.low, to.low, weights), Pull<Lanes>(from.high, to.high, weights)));
    });
}

}  // namespace
}  // namespace clarivex
