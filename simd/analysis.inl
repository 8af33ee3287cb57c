// Kernels that read the decoded frame: lighting votes, the split of packed pixels, and the unscaled vertical sharpener.
#pragma once

#include <cstdint>

#include "simd/blocks.inl"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

/// By how much a step of chroma brightens a vote, in 256ths of a level.
constexpr int16_t firstChromaRise = 730;
constexpr int16_t secondChromaRise = 870;

/// Level and votes of one register of column pairs.
template <class Lanes>
struct Votes {
    typename Lanes::I16 level, a, b, c;
};

template <class Lanes>
Votes<Lanes> CountVotes(typename Lanes::U8 lumaPairs, typename Lanes::I16 first, typename Lanes::I16 second) {
    const auto neutral = Lanes::Set(128);
    const auto d1 = Lanes::SubWrap(first, neutral);
    const auto d2 = Lanes::SubWrap(second, neutral);
    const auto both = Lanes::AddWrap(Lanes::EvenBytes(lumaPairs), Lanes::OddBytes(lumaPairs));
    const auto level = Lanes::template ShiftRightLogical<1>(both);
    // −320·d1 − 160·d2 in 256ths is −10·d1 − 5·d2 in eighths, which fits a word.
    const auto eighths = Lanes::AddWrap(Lanes::MulLow(d1, Lanes::Set(-10)), Lanes::MulLow(d2, Lanes::Set(-5)));
    const auto rise = [&](typename Lanes::I16 distance, int16_t factor) {  // (factor · distance) >> 8
        return Lanes::MulHigh(Lanes::template ShiftLeft<8>(distance), Lanes::Set(factor));
    };
    return {level, Lanes::AddWrap(level, Lanes::template ShiftRight<3>(eighths)),
            Lanes::Max(level, Lanes::AddWrap(level, rise(d1, firstChromaRise))),
            Lanes::Max(level, Lanes::AddWrap(level, rise(d2, secondChromaRise)))};
}

template <class Lanes>
void LightingVotes(const uint8_t* luma, const uint8_t* firstChroma, const uint8_t* secondChroma, int32_t pairs,
                   const VoteRows& votes) {
    ForEachBlock<Lanes>(pairs, [&](int32_t x, auto block) {
        uint8_t copy[2 * blockLength<Lanes>] = {};
        const uint8_t* source = luma + 2 * x;
        if (pairs < blockLength<Lanes>) {
            std::memcpy(copy, source, 2 * static_cast<size_t>(pairs));
            source = copy;
        }
        const Words<Lanes> first = block.LoadWords(firstChroma + x);
        const Words<Lanes> second = block.LoadWords(secondChroma + x);
        const Votes<Lanes> low = CountVotes<Lanes>(Lanes::LoadBytes(source), first.low, second.low);
        const Votes<Lanes> high =
            CountVotes<Lanes>(Lanes::LoadBytes(source + blockLength<Lanes>), first.high, second.high);
        block.Store(votes.level + x, Lanes::Pack(low.level, high.level));
        block.Store(votes.voteA + x, Lanes::Pack(low.a, high.a));
        block.Store(votes.voteB + x, Lanes::Pack(low.b, high.b));
        block.Store(votes.voteC + x, Lanes::Pack(low.c, high.c));
    });
}

template <class Lanes>
void SplitPackedRow(const uint8_t* packed, uint8_t* luma, uint8_t* u, uint8_t* v, int32_t pairs) {
    constexpr int32_t length = blockLength<Lanes>;
    const auto step = [&](const uint8_t* source, int32_t n, auto block, auto lumaBlock) {
        typename Lanes::U8 words[4];
        for (int32_t i = 0; i < 4; ++i) words[i] = Lanes::LoadBytes(source + i * length);
        lumaBlock(n, Lanes::Pack(Lanes::EvenBytes(words[0]), Lanes::EvenBytes(words[1])),
                  Lanes::Pack(Lanes::EvenBytes(words[2]), Lanes::EvenBytes(words[3])));
        if (u == nullptr) return;
        const auto first = Lanes::Pack(Lanes::OddBytes(words[0]), Lanes::OddBytes(words[1]));
        const auto second = Lanes::Pack(Lanes::OddBytes(words[2]), Lanes::OddBytes(words[3]));
        block.Store(u + n, Lanes::Pack(Lanes::EvenBytes(first), Lanes::EvenBytes(second)));
        block.Store(v + n, Lanes::Pack(Lanes::OddBytes(first), Lanes::OddBytes(second)));
    };
    int32_t n = 0;
    for (; n + length <= pairs; n += length)
        step(packed + 4 * n, n, WholeBlock<Lanes>{}, [&](int32_t at, auto low, auto high) {
            Lanes::StoreBytes(luma + 2 * at, low);
            Lanes::StoreBytes(luma + 2 * at + length, high);
        });
    if (n == pairs) return;
    uint8_t copy[4 * length] = {};
    std::memcpy(copy, packed + 4 * n, 4 * static_cast<size_t>(pairs - n));
    step(copy, n, PartialBlock<Lanes>{pairs - n}, [&](int32_t at, auto low, auto high) {
        uint8_t lumaCopy[2 * length];
        Lanes::StoreBytes(lumaCopy, low);
        Lanes::StoreBytes(lumaCopy + length, high);
        std::memcpy(luma + 2 * at, lumaCopy, 2 * static_cast<size_t>(pairs - at));
    });
}

template <class Lanes>
void SharpenColumns(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* out, int32_t width,
                    int16_t gain) {
    const auto gains = Lanes::Set(gain);
    const auto rounding = Lanes::Set(4);
    const auto sharpen = [&](typename Lanes::I16 centre, typename Lanes::I16 up, typename Lanes::I16 down) {
        const auto measure = Lanes::SubWrap(Lanes::AddWrap(centre, centre), Lanes::AddWrap(up, down));
        const auto detail = Lanes::AddWrap(Lanes::MulLow(measure, gains), rounding);
        return Lanes::AddWrap(centre, Lanes::template ShiftRight<4>(detail));
    };
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const Words<Lanes> centre = block.LoadWords(row + x);
        const Words<Lanes> up = block.LoadWords(above + x);
        const Words<Lanes> down = block.LoadWords(below + x);
        block.Store(out + x,
                    Lanes::Pack(sharpen(centre.low, up.low, down.low), sharpen(centre.high, up.high, down.high)));
    });
}

}  // namespace
}  // namespace clarivex
