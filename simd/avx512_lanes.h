// Thirty-two 16-bit lanes of AVX-512 (BW). Shuffles across quarters stay in here: outside, lanes are in memory order.
#pragma once

// The compiler's own header starts some results from undefined registers on purpose and then warns of it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop

#include <cstdint>

#include "simd/lanes.h"
#include "simd/transpose.h"

namespace clarivex {
namespace {

struct Avx512Lanes {
    static constexpr int32_t width = 32;
    static constexpr bool tapsByHalves = false;
    static constexpr bool sumsByHalves = false;
    using I16 = __m512i;
    using U8 = __m512i;
    struct Pair {
        I16 low, high;
    };
    using Both = Pair;  // bytes by turns
    using Weights = __m512i;

    static I16 Set(int16_t v) { return _mm512_set1_epi16(v); }
    static I16 Load(const int16_t* p) { return _mm512_loadu_si512(p); }
    static I16 InRegister(I16 v) {
        asm("" : "+v"(v));
        return v;
    }
    static void Store(int16_t* p, I16 v) { _mm512_storeu_si512(p, v); }
    static I16 LoadU8(const uint8_t* p) {
        return _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
    }

    static I16 AddWrap(I16 a, I16 b) { return _mm512_add_epi16(a, b); }
    static I16 SubWrap(I16 a, I16 b) { return _mm512_sub_epi16(a, b); }
    static I16 AddSat(I16 a, I16 b) { return _mm512_adds_epi16(a, b); }
    static I16 SubSat(I16 a, I16 b) { return _mm512_subs_epi16(a, b); }
    static I16 MulHigh(I16 a, I16 b) { return _mm512_mulhi_epi16(a, b); }
    static I16 MulLow(I16 a, I16 b) { return _mm512_mullo_epi16(a, b); }
    static I16 Min(I16 a, I16 b) { return _mm512_min_epi16(a, b); }
    static I16 Max(I16 a, I16 b) { return _mm512_max_epi16(a, b); }
    template <int n>
    static I16 ShiftLeft(I16 a) {
        return _mm512_slli_epi16(a, n);
    }
    template <int n>
    static I16 ShiftRight(I16 a) {
        return _mm512_srai_epi16(a, n);
    }
    template <int n>
    static I16 ShiftRightLogical(I16 a) {
        return _mm512_srli_epi16(a, n);
    }

    /// The rounding multiply divides by 2^15, so a gain of at most 31 is kept 2^10 times as large.
    static I16 GainFactor(int16_t gain) { return Set(static_cast<int16_t>(gain << 10)); }
    static I16 GainOver32(I16 a, I16 factor) { return _mm512_mulhrs_epi16(a, factor); }

    static U8 LoadBytes(const uint8_t* p) { return _mm512_loadu_si512(p); }
    static void StoreBytes(uint8_t* p, U8 v) { _mm512_storeu_si512(p, v); }
    static U8 MinBytes(U8 a, U8 b) { return _mm512_min_epu8(a, b); }
    static U8 MaxBytes(U8 a, U8 b) { return _mm512_max_epu8(a, b); }
    static U8 AddBytes(U8 a, U8 b) { return _mm512_adds_epu8(a, b); }
    static U8 SubBytes(U8 a, U8 b) { return _mm512_subs_epu8(a, b); }
    static U8 Average(U8 a, U8 b) { return _mm512_avg_epu8(a, b); }
    static U8 AverageDown(U8 a, U8 b) {
        return _mm512_sub_epi8(_mm512_avg_epu8(a, b), _mm512_and_si512(_mm512_xor_si512(a, b), _mm512_set1_epi8(1)));
    }
    template <int n>
    static U8 LeanBytes(U8 a, U8 b) {
        const Pair sum = WeighSum(Together(a, b), MakeWeights(64 - n, n));
        return PackUnpacked({ShiftRight<6>(sum.low), ShiftRight<6>(sum.high)});
    }
    static U8 RaiseUpperHalf(U8 a) { return _mm512_mask_adds_epu8(a, _mm512_movepi8_mask(a), a, _mm512_set1_epi8(1)); }

    static U8 Pack(I16 low, I16 high) {
        return _mm512_permutexvar_epi64(Qwords(0, 2, 4, 6, 1, 3, 5, 7), _mm512_packus_epi16(low, high));
    }
    static U8 PackInterleaved(I16 even, I16 odd) {
        const U8 both = _mm512_packus_epi16(even, odd);  // in each quarter eight even ones, eight odd ones
        return _mm512_unpacklo_epi8(both, _mm512_bsrli_epi128(both, 8));
    }
    static void StorePacked2(uint8_t* p, const Pair& a, const Pair& b) {
        const U8 turns = _mm512_broadcast_i32x4(_mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15));
        StoreBytes(p, _mm512_shuffle_epi8(_mm512_packus_epi16(a.low, b.low), turns));
        StoreBytes(p + 64, _mm512_shuffle_epi8(_mm512_packus_epi16(a.high, b.high), turns));
    }
    static U8 FlipSigns(U8 v) { return _mm512_xor_si512(v, _mm512_set1_epi8(-128)); }
    static I16 SignedRepeatLow(U8 v) {
        const U8 spread = Spread(FlipSigns(v));
        return _mm512_unpacklo_epi8(spread, spread);
    }
    static I16 SignedRepeatHigh(U8 v) {
        const U8 spread = Spread(FlipSigns(v));
        return _mm512_unpackhi_epi8(spread, spread);
    }
    static I16 CentredRepeatLow(U8 v) {
        const U8 spread = Spread(v);
        return _mm512_unpacklo_epi8(spread, FlipSigns(spread));
    }
    static I16 CentredRepeatHigh(U8 v) {
        const U8 spread = Spread(v);
        return _mm512_unpackhi_epi8(spread, FlipSigns(spread));
    }
    static I16 EvenBytes(U8 v) { return _mm512_and_si512(v, _mm512_set1_epi16(0xFF)); }
    static I16 OddBytes(U8 v) { return _mm512_srli_epi16(v, 8); }

    static void StoreInterleaved2(uint8_t* p, U8 a, U8 b) {
        const U8 low = _mm512_unpacklo_epi8(a, b);
        const U8 high = _mm512_unpackhi_epi8(a, b);
        StoreBytes(p, _mm512_permutex2var_epi64(low, Qwords(0, 1, 8, 9, 2, 3, 10, 11), high));
        StoreBytes(p + 64, _mm512_permutex2var_epi64(low, Qwords(4, 5, 12, 13, 6, 7, 14, 15), high));
    }
    /// Unpacking and its reverse keep to the halves of a register, which is all that is needed between the two.
    static Weights MakeWeights(int32_t a, int32_t b) {
        return _mm512_set1_epi16(static_cast<int16_t>((b << 8) | (a & 0xFF)));
    }
    static Pair Unpack(U8 v) {
        return {_mm512_unpacklo_epi8(v, _mm512_setzero_si512()), _mm512_unpackhi_epi8(v, _mm512_setzero_si512())};
    }
    static U8 Centre(U8 v) { return FlipSigns(RaiseUpperHalf(v)); }
    static Pair Repeat(U8 v) { return {_mm512_unpacklo_epi8(v, v), _mm512_unpackhi_epi8(v, v)}; }
    static Pair Sum(U8 a, U8 b) { return WeighSum(Together(a, b), _mm512_set1_epi8(1)); }
    static Both Together(U8 a, U8 b) { return {_mm512_unpacklo_epi8(a, b), _mm512_unpackhi_epi8(a, b)}; }
    static Pair WeighSum(Both v, Weights w) {
        return {_mm512_maddubs_epi16(v.low, w), _mm512_maddubs_epi16(v.high, w)};
    }
    static U8 PackUnpacked(Pair words) { return _mm512_packus_epi16(words.low, words.high); }

    static void LoadColumns(const uint8_t* const* rows, int32_t x, U8 (&tile)[16]) {
        for (int32_t i = 0; i < 16; ++i) tile[i] = Pieces(rows + i, x);
        Transpose(tile);
    }
    static void StoreColumns(uint8_t* const* rows, int32_t x, const uint8_t* columns) {
        U8 tile[16];
        for (int32_t i = 0; i < 16; ++i) tile[i] = LoadBytes(columns + 64 * i);
        Transpose(tile);
        for (int32_t i = 0; i < 16; ++i) StorePieces(rows + i, x, tile[i]);
    }

    /// Sums stand in the order of unpacked words, and packing undoes it.
    struct Sums {
        __m512i low, high;
    };
    using TapPair = __m512i;
    static Sums SetSums(int32_t v) { return {_mm512_set1_epi32(v), _mm512_set1_epi32(v)}; }
    static TapPair MakeTapPair(int16_t a, int16_t b) {
        return _mm512_set1_epi32(static_cast<int32_t>(static_cast<uint16_t>(a) | static_cast<uint32_t>(b) << 16));
    }
    static Sums AddProducts(Sums sums, I16 a, I16 b, TapPair taps) {
        return {_mm512_add_epi32(sums.low, _mm512_madd_epi16(_mm512_unpacklo_epi16(a, b), taps)),
                _mm512_add_epi32(sums.high, _mm512_madd_epi16(_mm512_unpackhi_epi16(a, b), taps))};
    }
    static Sums AddSums(Sums a, Sums b) { return {_mm512_add_epi32(a.low, b.low), _mm512_add_epi32(a.high, b.high)}; }
    static Sums SubSums(Sums a, Sums b) { return {_mm512_sub_epi32(a.low, b.low), _mm512_sub_epi32(a.high, b.high)}; }
    static Sums MinSums(Sums a, Sums b) { return {_mm512_min_epi32(a.low, b.low), _mm512_min_epi32(a.high, b.high)}; }
    static Sums MaxSums(Sums a, Sums b) { return {_mm512_max_epi32(a.low, b.low), _mm512_max_epi32(a.high, b.high)}; }
    template <int n>
    static Sums ShiftSums(Sums sums) {
        return {_mm512_srai_epi32(sums.low, n), _mm512_srai_epi32(sums.high, n)};
    }
    static Sums MulHighSums(Sums sums, int16_t factor) {
        // The lower byte and what is above it are multiplied on their own: both fit into a word.
        const TapPair lowWords = MakeTapPair(factor, 0);
        const auto scale = [&](__m512i v) {
            const __m512i upper = _mm512_madd_epi16(_mm512_srai_epi32(v, 8), lowWords);
            const __m512i lower = _mm512_madd_epi16(_mm512_and_si512(v, _mm512_set1_epi32(255)), lowWords);
            return _mm512_srai_epi32(_mm512_add_epi32(upper, _mm512_srai_epi32(lower, 8)), 8);
        };
        return {scale(sums.low), scale(sums.high)};
    }
    static I16 PackSums(Sums sums) { return _mm512_packs_epi32(sums.low, sums.high); }
    static void StoreInterleavedWords(int16_t* p, I16 a, I16 b) {
        const I16 low = _mm512_unpacklo_epi16(a, b);
        const I16 high = _mm512_unpackhi_epi16(a, b);
        Store(p, _mm512_permutex2var_epi64(low, Qwords(0, 1, 8, 9, 2, 3, 10, 11), high));
        Store(p + 32, _mm512_permutex2var_epi64(low, Qwords(4, 5, 12, 13, 6, 7, 14, 15), high));
    }

protected:
    static void Transpose(U8 (&tile)[16]) {
        TransposeSquares(
            tile, [](U8 a, U8 b) { return _mm512_unpacklo_epi8(a, b); },
            [](U8 a, U8 b) { return _mm512_unpackhi_epi8(a, b); });
    }
    /// Sixteen columns of four rows, a row in each quarter.
    static U8 Pieces(const uint8_t* const* rows, int32_t x) {
        const auto piece = [=](int32_t row) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[row] + x));
        };
        const __m512i two = _mm512_inserti32x4(_mm512_castsi128_si512(piece(0)), piece(16), 1);
        return _mm512_inserti32x4(_mm512_inserti32x4(two, piece(32), 2), piece(48), 3);
    }
    static void StorePieces(uint8_t* const* rows, int32_t x, U8 v) {
        const auto store = [=](int32_t row, __m128i piece) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(rows[row] + x), piece);
        };
        store(0, _mm512_castsi512_si128(v));
        store(16, _mm512_extracti32x4_epi32(v, 1));
        store(32, _mm512_extracti32x4_epi32(v, 2));
        store(48, _mm512_extracti32x4_epi32(v, 3));
    }

    static __m512i Qwords(int a, int b, int c, int d, int e, int f, int g, int h) {
        return _mm512_setr_epi64(a, b, c, d, e, f, g, h);
    }
    /// Puts the lower half's eight-byte pieces first in each quarter, so that unpacking gives memory order.
    static U8 Spread(U8 v) { return _mm512_permutexvar_epi64(Qwords(0, 4, 1, 5, 2, 6, 3, 7), v); }
};
static_assert(KernelLanes<Avx512Lanes>);

}  // namespace
}  // namespace clarivex
