// Linear interpolation of chroma: 3/2 along rows and down columns, and the blend of two rows for packed pictures.
#pragma once

#include <cstdint>

#include "simd/blocks.inl"

namespace clarivex {
namespace {

template <class Lanes>
void EnlargeChromaRow(const uint8_t* in, const int16_t* weights, uint8_t* out, int32_t count) {
    const auto tripleWeights = Lanes::MakeTripleWeights(weights);
    constexpr int32_t inputs = 4 * Lanes::width, outputs = 6 * Lanes::width;
    for (; count >= outputs; count -= outputs, in += inputs, out += outputs)
        Lanes::StorePulledTriples(out, in, tripleWeights);
    if (count > 0) {
        uint8_t copy[outputs];
        Lanes::StorePulledTriples(copy, in, tripleWeights);
        std::memcpy(out, copy, static_cast<size_t>(count));
    }
}

template <class Lanes>
void EnlargeChromaColumns(const uint8_t* const* rows, uint8_t* const* outs, int32_t width) {
    const uint8_t* const in[4] = {rows[0], rows[1], rows[2], rows[3]};
    uint8_t* const out[3] = {outs[0], outs[1], outs[2]};
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        const auto upper = block.Load(in[1] + x);
        const auto lower = block.Load(in[2] + x);
        block.Store(out[0] + x, Lanes::template LeanBytes<11>(upper, block.Load(in[0] + x)));
        block.Store(out[1] + x, Lanes::AverageDown(upper, lower));
        block.Store(out[2] + x, Lanes::template LeanBytes<11>(lower, block.Load(in[3] + x)));
    });
}

/// A block of a row pulled a quarter of the way to its neighbour.
template <class Lanes, class Block = WholeBlock<Lanes>>
typename Lanes::U8 BlendedRow(const uint8_t* row, const uint8_t* neighbour, const Block& block = {}) {
    const auto current = block.Load(row);
    return Lanes::Average(Lanes::Average(block.Load(neighbour), current), current);
}

template <class Lanes>
void BlendChromaRows(const uint8_t* const* rows, uint8_t* out, int32_t width) {
    const uint8_t* const in[4] = {rows[0], rows[1], rows[2], rows[3]};
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        block.StoreInterleaved2(out + 2 * x, BlendedRow<Lanes>(in[0] + x, in[1] + x, block),
                                BlendedRow<Lanes>(in[2] + x, in[3] + x, block));
    });
}

template <class Lanes>
void Interleave(const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t width) {
    ForEachBlock<Lanes>(width, [&](int32_t x, auto block) {
        block.StoreInterleaved2(out + 2 * x, block.Load(a + x), block.Load(b + x));
    });
}

template <class Lanes>
void Deinterleave(const uint8_t* in, uint8_t* a, uint8_t* b, int32_t width) {
    const auto step = [](const uint8_t* pairs, uint8_t* evens, uint8_t* odds) {
        const auto first = Lanes::LoadBytes(pairs);
        const auto second = Lanes::LoadBytes(pairs + blockLength<Lanes>);
        Lanes::StoreBytes(evens, Lanes::Pack(Lanes::EvenBytes(first), Lanes::EvenBytes(second)));
        Lanes::StoreBytes(odds, Lanes::Pack(Lanes::OddBytes(first), Lanes::OddBytes(second)));
    };
    int32_t x = 0;
    for (; x + blockLength<Lanes> <= width; x += blockLength<Lanes>) step(in + 2 * x, a + x, b + x);
    if (x == width) return;
    if (width >= blockLength<Lanes>) {
        x = width - blockLength<Lanes>;
        step(in + 2 * x, a + x, b + x);
        return;
    }
    uint8_t pairs[2 * blockLength<Lanes>] = {}, evens[blockLength<Lanes>], odds[blockLength<Lanes>];
    std::memcpy(pairs, in, 2 * static_cast<size_t>(width));
    step(pairs, evens, odds);
    std::memcpy(a, evens, static_cast<size_t>(width));
    std::memcpy(b, odds, static_cast<size_t>(width));
}

}  // namespace
}  // namespace clarivex
