// Eight 16-bit lanes of SSE2.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "simd/lanes.h"
#include "simd/transpose.h"

namespace clarivex {
namespace {

struct Sse2Lanes {
    static constexpr int32_t width = 8;
    static constexpr bool tapsByHalves = sizeof(void*) == 4;
    static constexpr bool sumsByHalves = false;
    using I16 = __m128i;
    using U8 = __m128i;
    struct Pair {
        I16 low, high;
    };
    struct Both {
        Pair a, b;
    };
    struct Weights {
        I16 a, b;
    };

    static I16 Set(int16_t v) { return _mm_set1_epi16(v); }
    static I16 Load(const int16_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    static I16 InRegister(I16 v) {
        asm("" : "+x"(v));
        return v;
    }
    static void Store(int16_t* p, I16 v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    static I16 LoadU8(const uint8_t* p) {
        return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
    }

    static I16 AddWrap(I16 a, I16 b) { return _mm_add_epi16(a, b); }
    static I16 SubWrap(I16 a, I16 b) { return _mm_sub_epi16(a, b); }
    static I16 AddSat(I16 a, I16 b) { return _mm_adds_epi16(a, b); }
    static I16 SubSat(I16 a, I16 b) { return _mm_subs_epi16(a, b); }
    static I16 MulHigh(I16 a, I16 b) { return _mm_mulhi_epi16(a, b); }
    static I16 MulLow(I16 a, I16 b) { return _mm_mullo_epi16(a, b); }
    static I16 Min(I16 a, I16 b) { return _mm_min_epi16(a, b); }
    static I16 Max(I16 a, I16 b) { return _mm_max_epi16(a, b); }
    static I16 Or(I16 a, I16 b) { return _mm_or_si128(a, b); }
    template <int n>
    static I16 ShiftLeft(I16 a) {
        return _mm_slli_epi16(a, n);
    }
    template <int n>
    static I16 ShiftRight(I16 a) {
        return _mm_srai_epi16(a, n);
    }
    template <int n>
    static I16 ShiftRightLogical(I16 a) {
        return _mm_srli_epi16(a, n);
    }

    static I16 GainFactor(int16_t gain) { return Set(gain); }
    static I16 GainOver32(I16 a, I16 factor) { return ShiftRight<5>(AddWrap(MulLow(a, factor), Set(16))); }

    static U8 LoadBytes(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    static void StoreBytes(uint8_t* p, U8 v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    static U8 MinBytes(U8 a, U8 b) { return _mm_min_epu8(a, b); }
    static U8 MaxBytes(U8 a, U8 b) { return _mm_max_epu8(a, b); }
    static U8 AddBytes(U8 a, U8 b) { return _mm_adds_epu8(a, b); }
    static U8 SubBytes(U8 a, U8 b) { return _mm_subs_epu8(a, b); }
    static U8 Average(U8 a, U8 b) { return _mm_avg_epu8(a, b); }
    static U8 AverageDown(U8 a, U8 b) {
        return _mm_sub_epi8(_mm_avg_epu8(a, b), _mm_and_si128(_mm_xor_si128(a, b), _mm_set1_epi8(1)));
    }
    template <int n>
    static U8 LeanBytes(U8 a, U8 b) {
        const auto lean = [](I16 from, I16 to) {
            return AddWrap(from, MulHigh(ShiftLeft<6>(SubWrap(to, from)), Set(16 * n)));
        };
        return Pack(lean(Low(a), Low(b)), lean(High(a), High(b)));
    }
    static U8 RaiseUpperHalf(U8 a) {
        const U8 upperHalf = _mm_cmpgt_epi8(_mm_setzero_si128(), a);  // −1 from 128 on
        return _mm_adds_epu8(a, _mm_and_si128(upperHalf, _mm_set1_epi8(1)));
    }

    static U8 Pack(I16 low, I16 high) { return _mm_packus_epi16(low, high); }
    static U8 PackInterleaved(I16 even, I16 odd) {
        const U8 both = _mm_packus_epi16(even, odd);
        return _mm_unpacklo_epi8(both, _mm_srli_si128(both, 8));
    }
    static void StorePacked2(uint8_t* p, const Pair& a, const Pair& b) {
        StoreInterleaved2(p, Pack(a.low, a.high), Pack(b.low, b.high));
    }
    static U8 FlipSigns(U8 v) { return _mm_xor_si128(v, _mm_set1_epi8(-128)); }
    static I16 SignedRepeatLow(U8 v) { return _mm_unpacklo_epi8(FlipSigns(v), FlipSigns(v)); }
    static I16 SignedRepeatHigh(U8 v) { return _mm_unpackhi_epi8(FlipSigns(v), FlipSigns(v)); }
    static I16 CentredRepeatLow(U8 v) { return _mm_unpacklo_epi8(v, FlipSigns(v)); }
    static I16 CentredRepeatHigh(U8 v) { return _mm_unpackhi_epi8(v, FlipSigns(v)); }
    static I16 EvenBytes(U8 v) { return _mm_and_si128(v, _mm_set1_epi16(0xFF)); }
    static I16 OddBytes(U8 v) { return _mm_srli_epi16(v, 8); }

    static void StoreInterleaved2(uint8_t* p, U8 a, U8 b) {
        StoreBytes(p, _mm_unpacklo_epi8(a, b));
        StoreBytes(p + 16, _mm_unpackhi_epi8(a, b));
    }
    struct TripleWeights {
        I16 a, b, c;  // in 32768ths
    };
    static TripleWeights MakeTripleWeights(const int16_t* w) {
        const auto word = [](int16_t weight) { return Set(static_cast<int16_t>(weight << 7)); };
        return {word(w[0]), word(w[1]), word(w[2])};
    }
    static void StorePulledTriples(uint8_t* out, const uint8_t* in, const TripleWeights& w) {
        Pair a, b, c;
        PullTriples(in, w, a.low, b.low, c.low);
        PullTriples(in + 16, w, a.high, b.high, c.high);
        StoreTriples(out, a, b, c);
    }

    static Weights MakeWeights(int32_t a, int32_t b) {
        return {Set(static_cast<int16_t>(a)), Set(static_cast<int16_t>(b))};
    }
    static Pair Unpack(U8 v) { return {Low(v), High(v)}; }
    static U8 Centre(U8 v) {
        const U8 upperHalf = _mm_cmpgt_epi8(_mm_setzero_si128(), v);  // −1 from 128 on
        return _mm_subs_epi8(FlipSigns(v), upperHalf);
    }
    static Pair Repeat(U8 v) { return {_mm_unpacklo_epi8(v, v), _mm_unpackhi_epi8(v, v)}; }
    static Pair Sum(U8 a, U8 b) { return {AddWrap(Low(a), Low(b)), AddWrap(High(a), High(b))}; }
    static Both Together(U8 a, U8 b) { return {Unpack(a), Unpack(b)}; }
    static Pair WeighSum(const Both& v, const Weights& w) {
        return {AddWrap(MulLow(v.a.low, w.a), MulLow(v.b.low, w.b)),
                AddWrap(MulLow(v.a.high, w.a), MulLow(v.b.high, w.b))};
    }
    static U8 PackUnpacked(Pair words) { return Pack(words.low, words.high); }

    static void LoadColumns(const uint8_t* const* rows, int32_t x, U8 (&tile)[16]) {
        for (int32_t i = 0; i < 16; ++i) tile[i] = LoadBytes(rows[i] + x);
        Transpose(tile);
    }
    static void StoreColumns(uint8_t* const* rows, int32_t x, const uint8_t* columns) {
        U8 tile[16];
        for (int32_t i = 0; i < 16; ++i) tile[i] = LoadBytes(columns + 16 * i);
        Transpose(tile);
        for (int32_t i = 0; i < 16; ++i) StoreBytes(rows[i] + x, tile[i]);
    }

    /// Sums stand in the order of unpacked words, and packing undoes it.
    struct Sums {
        __m128i low, high;
    };
    using TapPair = __m128i;
    static Sums SetSums(int32_t v) { return {_mm_set1_epi32(v), _mm_set1_epi32(v)}; }
    static TapPair MakeTapPair(int16_t a, int16_t b) {
        return _mm_set1_epi32(static_cast<int32_t>(static_cast<uint16_t>(a) | static_cast<uint32_t>(b) << 16));
    }
    static Sums AddProducts(Sums sums, I16 a, I16 b, TapPair taps) {
        return {_mm_add_epi32(sums.low, _mm_madd_epi16(_mm_unpacklo_epi16(a, b), taps)),
                _mm_add_epi32(sums.high, _mm_madd_epi16(_mm_unpackhi_epi16(a, b), taps))};
    }
    static Sums AddSums(Sums a, Sums b) { return {_mm_add_epi32(a.low, b.low), _mm_add_epi32(a.high, b.high)}; }
    static Sums SubSums(Sums a, Sums b) { return {_mm_sub_epi32(a.low, b.low), _mm_sub_epi32(a.high, b.high)}; }
    static Sums MinSums(Sums a, Sums b) { return {MinWide(a.low, b.low), MinWide(a.high, b.high)}; }
    static Sums MaxSums(Sums a, Sums b) { return {MaxWide(a.low, b.low), MaxWide(a.high, b.high)}; }
    template <int n>
    static Sums ShiftSums(Sums sums) {
        return {_mm_srai_epi32(sums.low, n), _mm_srai_epi32(sums.high, n)};
    }
    static Sums MulHighSums(Sums sums, int16_t factor) {
        // The lower byte and what is above it are multiplied on their own: both fit into a word.
        const TapPair lowWords = MakeTapPair(factor, 0);
        const auto scale = [&](__m128i v) {
            const __m128i upper = _mm_madd_epi16(_mm_srai_epi32(v, 8), lowWords);
            const __m128i lower = _mm_madd_epi16(_mm_and_si128(v, _mm_set1_epi32(255)), lowWords);
            return _mm_srai_epi32(_mm_add_epi32(upper, _mm_srai_epi32(lower, 8)), 8);
        };
        return {scale(sums.low), scale(sums.high)};
    }
    static I16 PackSums(Sums sums) { return _mm_packs_epi32(sums.low, sums.high); }
    static void StoreInterleavedWords(int16_t* p, I16 a, I16 b) {
        Store(p, _mm_unpacklo_epi16(a, b));
        Store(p + 8, _mm_unpackhi_epi16(a, b));
    }

private:
    /// v pulled towards another by its weight.
    static I16 Pull(I16 v, I16 towards, I16 weight) {
        const I16 distance = SubWrap(towards, v);
        return AddWrap(v, MulHigh(AddWrap(distance, distance), weight));
    }
    static void PullTriples(const uint8_t* p, const TripleWeights& w, I16& a, I16& b, I16& c) {
        const U8 pairs = LoadBytes(p);
        const I16 even = EvenBytes(pairs), odd = OddBytes(pairs);
        a = Pull(even, OddBytes(LoadBytes(p - 2)), w.a);
        b = Pull(even, odd, w.b);
        c = Pull(odd, EvenBytes(LoadBytes(p + 2)), w.c);
    }
    static void StoreTriples(uint8_t* p, Pair wordsA, Pair wordsB, Pair wordsC) {
        const U8 a = PackUnpacked(wordsA);
        const U8 b = PackUnpacked(wordsB);
        const U8 c = PackUnpacked(wordsC);
        const U8 zero = _mm_setzero_si128();
        const U8 pairsLow = _mm_unpacklo_epi8(a, b);
        const U8 pairsHigh = _mm_unpackhi_epi8(a, b);
        const U8 thirdLow = _mm_unpacklo_epi8(c, zero);
        const U8 thirdHigh = _mm_unpackhi_epi8(c, zero);
        // Four triples a store; its upper 4 bytes are zero and are overwritten by the next one, so the last is cut.
        StoreBytes(p, CloseTriples(_mm_unpacklo_epi16(pairsLow, thirdLow)));
        StoreBytes(p + 12, CloseTriples(_mm_unpackhi_epi16(pairsLow, thirdLow)));
        StoreBytes(p + 24, CloseTriples(_mm_unpacklo_epi16(pairsHigh, thirdHigh)));
        const U8 last = CloseTriples(_mm_unpackhi_epi16(pairsHigh, thirdHigh));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 36), last);
        const int32_t end = _mm_cvtsi128_si32(_mm_srli_si128(last, 8));
        std::memcpy(p + 44, &end, sizeof end);
    }
    static void Transpose(U8 (&tile)[16]) {
        TransposeSquares(
            tile, [](U8 a, U8 b) { return _mm_unpacklo_epi8(a, b); },
            [](U8 a, U8 b) { return _mm_unpackhi_epi8(a, b); });
    }

    static I16 Low(U8 v) { return _mm_unpacklo_epi8(v, _mm_setzero_si128()); }
    static I16 High(U8 v) { return _mm_unpackhi_epi8(v, _mm_setzero_si128()); }

    static __m128i Choose(__m128i mask, __m128i a, __m128i b) {
        return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
    }
    static __m128i MinWide(__m128i a, __m128i b) { return Choose(_mm_cmpgt_epi32(b, a), a, b); }
    static __m128i MaxWide(__m128i a, __m128i b) { return Choose(_mm_cmpgt_epi32(a, b), a, b); }

    /// Four 32-bit lanes of three bytes each, moved together to twelve bytes.
    static U8 CloseTriples(U8 v) {
        const U8 evenMask = _mm_set_epi32(0, 0xFFFFFF, 0, 0xFFFFFF);
        const U8 sixes = _mm_or_si128(_mm_and_si128(v, evenMask), _mm_srli_epi64(_mm_andnot_si128(evenMask, v), 8));
        const U8 lowMask = _mm_set_epi32(0, 0, -1, -1);
        return _mm_or_si128(_mm_and_si128(sixes, lowMask), _mm_srli_si128(_mm_andnot_si128(lowMask, sixes), 2));
    }
};
static_assert(KernelLanes<Sse2Lanes>);

}  // namespace
}  // namespace clarivex
