// How a kernel walks along a row: whole blocks straight from memory, the last one where the row ends, and rows shorter
// than a block through a copy, so that nothing outside the row is touched.
#pragma once

#include <cstdint>
#include <cstring>

namespace clarivex {
namespace {

template <class Lanes>
constexpr int32_t blockLength = 2 * Lanes::width;

/// Two registers of words, in memory order.
template <class Lanes>
struct Words {
    typename Lanes::I16 low;
    typename Lanes::I16 high;
};

/// start + product(0) + … + product(count − 1), in two sums by turns, so that one does not wait for the other.
/// Inlined always: as a function of its own it would find nothing in registers.
template <class Lanes, int32_t count, class Product>
[[gnu::always_inline]] inline typename Lanes::I16 SumByTurns(typename Lanes::I16 start, const Product& product) {
    typename Lanes::I16 sums[2] = {Lanes::AddWrap(start, product(0)), product(1)};
    for (int32_t k = 2; k < count; ++k)  // kept in this order: compilers build wider trees and run out of registers
        sums[k % 2] = Lanes::InRegister(Lanes::AddWrap(sums[k % 2], product(k)));
    return Lanes::AddWrap(sums[0], sums[1]);
}

template <class Lanes>
struct WholeBlock {
    static typename Lanes::U8 Load(const uint8_t* p) { return Lanes::LoadBytes(p); }
    static Words<Lanes> LoadWords(const uint8_t* p) { return {Lanes::LoadU8(p), Lanes::LoadU8(p + Lanes::width)}; }
    static void Store(uint8_t* p, typename Lanes::U8 v) { Lanes::StoreBytes(p, v); }
    static void StoreInterleaved2(uint8_t* p, typename Lanes::U8 a, typename Lanes::U8 b) {
        Lanes::StoreInterleaved2(p, a, b);
    }
};

template <class Lanes>
struct PartialBlock {
    int32_t count;  // samples of the block that belong to the row

    typename Lanes::U8 Load(const uint8_t* p) const {
        uint8_t copy[blockLength<Lanes>] = {};
        std::memcpy(copy, p, static_cast<size_t>(count));
        return Lanes::LoadBytes(copy);
    }
    Words<Lanes> LoadWords(const uint8_t* p) const {
        uint8_t copy[blockLength<Lanes>] = {};
        std::memcpy(copy, p, static_cast<size_t>(count));
        return {Lanes::LoadU8(copy), Lanes::LoadU8(copy + Lanes::width)};
    }
    void Store(uint8_t* p, typename Lanes::U8 v) const {
        uint8_t copy[blockLength<Lanes>];
        Lanes::StoreBytes(copy, v);
        std::memcpy(p, copy, static_cast<size_t>(count));
    }
    void StoreInterleaved2(uint8_t* p, typename Lanes::U8 a, typename Lanes::U8 b) const {
        uint8_t copy[2 * blockLength<Lanes>];
        Lanes::StoreInterleaved2(copy, a, b);
        std::memcpy(p, copy, 2 * static_cast<size_t>(count));
    }
};

/// Calls step(x, block) for blocks that cover a row of `width` samples. The last whole block lies at the row's end and may
/// overlap the one before it, so a row must not be written over while it is read.
template <class Lanes, class Step>
[[gnu::always_inline]] inline void ForEachBlock(int32_t width, Step step) {
    int32_t x = 0;
    for (; x + blockLength<Lanes> <= width; x += blockLength<Lanes>) step(x, WholeBlock<Lanes>{});
    if (x == width) return;
    if (width >= blockLength<Lanes>)
        step(width - blockLength<Lanes>, WholeBlock<Lanes>{});
    else
        step(0, PartialBlock<Lanes>{width});
}

}  // namespace
}  // namespace clarivex
