// One 16-bit lane: the plain form of every kernel and the reference for the wide ones.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "simd/lanes.h"

namespace clarivex {
namespace {

struct ScalarLanes {
    static constexpr int32_t width = 1;  // 16-bit lanes; a block of bytes holds twice as many samples
    static constexpr bool tapsByHalves = false;
    static constexpr bool sumsByHalves = false;
    using I16 = int16_t;
    struct U8 {
        uint8_t sample[2];
    };

    /// The words of a block of bytes.
    struct Pair {
        I16 low, high;
    };
    struct Both {
        U8 a, b;
    };
    struct Weights {
        int32_t a, b;
    };

    static I16 Wrap(int32_t v) { return static_cast<int16_t>(static_cast<uint16_t>(v)); }
    static I16 Saturate(int32_t v) { return static_cast<int16_t>(std::clamp(v, -32768, 32767)); }
    static uint8_t SaturateByte(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

    static I16 Set(int16_t v) { return v; }
    static I16 Load(const int16_t* p) { return *p; }
    static I16 InRegister(I16 v) { return v; }
    static void Store(int16_t* p, I16 v) { *p = v; }
    static I16 LoadU8(const uint8_t* p) { return *p; }

    static I16 AddWrap(I16 a, I16 b) { return Wrap(a + b); }
    static I16 SubWrap(I16 a, I16 b) { return Wrap(a - b); }
    static I16 AddSat(I16 a, I16 b) { return Saturate(a + b); }
    static I16 SubSat(I16 a, I16 b) { return Saturate(a - b); }
    static I16 MulHigh(I16 a, I16 b) { return static_cast<int16_t>((a * b) >> 16); }
    static I16 MulLow(I16 a, I16 b) { return Wrap(a * b); }
    static I16 Min(I16 a, I16 b) { return std::min(a, b); }
    static I16 Max(I16 a, I16 b) { return std::max(a, b); }
    template <int n>
    static I16 ShiftLeft(I16 a) {
        return Wrap(a << n);
    }
    template <int n>
    static I16 ShiftRight(I16 a) {
        return static_cast<int16_t>(a >> n);
    }
    template <int n>
    static I16 ShiftRightLogical(I16 a) {
        return Wrap(static_cast<uint16_t>(a) >> n);
    }

    static I16 GainFactor(int16_t gain) { return gain; }
    static I16 GainOver32(I16 a, I16 factor) { return Wrap((a * factor + 16) >> 5); }

    static U8 LoadBytes(const uint8_t* p) { return {{p[0], p[1]}}; }
    static void StoreBytes(uint8_t* p, U8 v) { std::memcpy(p, v.sample, 2); }
    static U8 MinBytes(U8 a, U8 b) {
        return {{std::min(a.sample[0], b.sample[0]), std::min(a.sample[1], b.sample[1])}};
    }
    static U8 MaxBytes(U8 a, U8 b) {
        return {{std::max(a.sample[0], b.sample[0]), std::max(a.sample[1], b.sample[1])}};
    }
    static U8 AddBytes(U8 a, U8 b) {
        return {{SaturateByte(a.sample[0] + b.sample[0]), SaturateByte(a.sample[1] + b.sample[1])}};
    }
    static U8 SubBytes(U8 a, U8 b) {
        return {{SaturateByte(a.sample[0] - b.sample[0]), SaturateByte(a.sample[1] - b.sample[1])}};
    }
    static U8 Average(U8 a, U8 b) {
        return {{static_cast<uint8_t>((a.sample[0] + b.sample[0] + 1) >> 1),
                 static_cast<uint8_t>((a.sample[1] + b.sample[1] + 1) >> 1)}};
    }
    static U8 AverageDown(U8 a, U8 b) {
        return {{static_cast<uint8_t>((a.sample[0] + b.sample[0]) >> 1),
                 static_cast<uint8_t>((a.sample[1] + b.sample[1]) >> 1)}};
    }
    template <int n>
    static U8 LeanBytes(U8 a, U8 b) {
        const auto lean = [](int32_t from, int32_t to) {
            return static_cast<uint8_t>((from * (64 - n) + to * n) >> 6);
        };
        return {{lean(a.sample[0], b.sample[0]), lean(a.sample[1], b.sample[1])}};
    }
    static U8 RaiseUpperHalf(U8 a) { return {{RaiseUpperHalf(a.sample[0]), RaiseUpperHalf(a.sample[1])}}; }
    static uint8_t RaiseUpperHalf(uint8_t v) { return static_cast<uint8_t>(v + (v >= 128 && v < 255 ? 1 : 0)); }

    static U8 Pack(I16 low, I16 high) { return {{SaturateByte(low), SaturateByte(high)}}; }
    static U8 PackInterleaved(I16 even, I16 odd) { return Pack(even, odd); }
    static I16 SignedRepeat(uint8_t v) { return Wrap((v << 8 | v) ^ 0x8080); }
    static I16 SignedRepeatLow(U8 v) { return SignedRepeat(v.sample[0]); }
    static I16 SignedRepeatHigh(U8 v) { return SignedRepeat(v.sample[1]); }
    static I16 CentredRepeat(uint8_t v) { return Wrap((v << 8 | v) ^ 0x8000); }
    static I16 CentredRepeatLow(U8 v) { return CentredRepeat(v.sample[0]); }
    static I16 CentredRepeatHigh(U8 v) { return CentredRepeat(v.sample[1]); }
    static I16 EvenBytes(U8 v) { return v.sample[0]; }
    static I16 OddBytes(U8 v) { return v.sample[1]; }

    static void StorePacked2(uint8_t* p, Pair a, Pair b) {
        StoreInterleaved2(p, Pack(a.low, a.high), Pack(b.low, b.high));
    }
    static void StoreInterleaved2(uint8_t* p, U8 a, U8 b) {
        const uint8_t out[4] = {a.sample[0], b.sample[0], a.sample[1], b.sample[1]};
        std::memcpy(p, out, sizeof out);
    }
    using TripleWeights = const int16_t*;
    static TripleWeights MakeTripleWeights(const int16_t* w) { return w; }
    static void StorePulledTriples(uint8_t* out, const uint8_t* in, TripleWeights w) {
        const auto pulled = [](int32_t v, int32_t towards, int32_t weight) {
            return static_cast<uint8_t>(v + ((towards - v) * weight >> 8));
        };
        for (int32_t i = 0; i < 2; ++i, in += 2, out += 3) {
            out[0] = pulled(in[0], in[-1], w[0]);
            out[1] = pulled(in[0], in[1], w[1]);
            out[2] = pulled(in[1], in[2], w[2]);
        }
    }

    static Weights MakeWeights(int32_t a, int32_t b) { return {a, b}; }
    static Pair Unpack(U8 v) { return {v.sample[0], v.sample[1]}; }
    static U8 Centre(U8 v) {
        const U8 raised = RaiseUpperHalf(v);
        return {{static_cast<uint8_t>(raised.sample[0] ^ 0x80), static_cast<uint8_t>(raised.sample[1] ^ 0x80)}};
    }
    static Pair Repeat(U8 v) { return {Wrap(257 * v.sample[0]), Wrap(257 * v.sample[1])}; }
    static Pair Sum(U8 a, U8 b) { return WeighSum({a, b}, {1, 1}); }
    static Both Together(U8 a, U8 b) { return {a, b}; }
    static Pair WeighSum(Both v, Weights w) {
        return {Wrap(v.a.sample[0] * w.a + v.b.sample[0] * w.b), Wrap(v.a.sample[1] * w.a + v.b.sample[1] * w.b)};
    }
    static U8 PackUnpacked(Pair words) { return Pack(words.low, words.high); }

    static void LoadColumns(const uint8_t* const* rows, int32_t x, U8 (&tile)[16]) {
        for (int32_t i = 0; i < 16; ++i) tile[i] = {{rows[0][x + i], rows[1][x + i]}};
    }
    static void StoreColumns(uint8_t* const* rows, int32_t x, const uint8_t* columns) {
        for (int32_t i = 0; i < 32; ++i) rows[i % 2][x + i / 2] = columns[i];
    }

    /// 32-bit sums of a register of words. They wrap.
    using Sums = int32_t;
    /// Multipliers of two registers of words.
    struct TapPair {
        int16_t a, b;
    };
    static int32_t Wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint64_t>(v)); }
    static Sums SetSums(int32_t v) { return v; }
    static TapPair MakeTapPair(int16_t a, int16_t b) { return {a, b}; }
    /// sums + a · taps.a + b · taps.b
    static Sums AddProducts(Sums sums, I16 a, I16 b, TapPair taps) {
        return Wrap32(int64_t{sums} + int64_t{a} * taps.a + int64_t{b} * taps.b);
    }
    static Sums AddSums(Sums a, Sums b) { return Wrap32(int64_t{a} + b); }
    static Sums SubSums(Sums a, Sums b) { return Wrap32(int64_t{a} - b); }
    static Sums MinSums(Sums a, Sums b) { return std::min(a, b); }
    static Sums MaxSums(Sums a, Sums b) { return std::max(a, b); }
    template <int n>
    static Sums ShiftSums(Sums sums) {
        return sums >> n;
    }
    /// sums · factor / 65536, rounded down; sums of −2²³ … 2²³ − 1.
    static Sums MulHighSums(Sums sums, int16_t factor) { return static_cast<Sums>((int64_t{sums} * factor) >> 16); }
    static I16 PackSums(Sums sums) { return Saturate(sums); }
    static void StoreInterleavedWords(int16_t* p, I16 a, I16 b) {
        p[0] = a;
        p[1] = b;
    }
};
static_assert(KernelLanes<ScalarLanes>);

}  // namespace
}  // namespace clarivex
