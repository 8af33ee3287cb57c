// Sixteen 16-bit lanes of AVX2. Shuffles across the two halves stay in here: outside, lanes are in memory order.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "simd/lanes.h"
#include "simd/transpose.h"
#include "simd/triples.h"

namespace clarivex {
namespace {

struct Avx2Lanes {
    static constexpr int32_t width = 16;
    static constexpr bool tapsByHalves = false;
    static constexpr bool sumsByHalves = true;
    using I16 = __m256i;
    using U8 = __m256i;
    struct Pair {
        I16 low, high;
    };
    using Both = Pair;  // bytes by turns
    using Weights = __m256i;

    static I16 Set(int16_t v) { return _mm256_set1_epi16(v); }
    static I16 Load(const int16_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static I16 InRegister(I16 v) {
        asm("" : "+x"(v));
        return v;
    }
    static void Store(int16_t* p, I16 v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    static I16 LoadU8(const uint8_t* p) {
        return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    }

    static I16 AddWrap(I16 a, I16 b) { return _mm256_add_epi16(a, b); }
    static I16 SubWrap(I16 a, I16 b) { return _mm256_sub_epi16(a, b); }
    static I16 AddSat(I16 a, I16 b) { return _mm256_adds_epi16(a, b); }
    static I16 SubSat(I16 a, I16 b) { return _mm256_subs_epi16(a, b); }
    static I16 MulHigh(I16 a, I16 b) { return _mm256_mulhi_epi16(a, b); }
    static I16 MulLow(I16 a, I16 b) { return _mm256_mullo_epi16(a, b); }
    static I16 Min(I16 a, I16 b) { return _mm256_min_epi16(a, b); }
    static I16 Max(I16 a, I16 b) { return _mm256_max_epi16(a, b); }
    template <int n>
    static I16 ShiftLeft(I16 a) {
        return _mm256_slli_epi16(a, n);
    }
    template <int n>
    static I16 ShiftRight(I16 a) {
        return _mm256_srai_epi16(a, n);
    }
    template <int n>
    static I16 ShiftRightLogical(I16 a) {
        return _mm256_srli_epi16(a, n);
    }

    /// The rounding multiply divides by 2^15, so a gain of at most 31 is kept 2^10 times as large.
    static I16 GainFactor(int16_t gain) { return Set(static_cast<int16_t>(gain << 10)); }
    static I16 GainOver32(I16 a, I16 factor) { return _mm256_mulhrs_epi16(a, factor); }

    static U8 LoadBytes(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
    static void StoreBytes(uint8_t* p, U8 v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    static U8 MinBytes(U8 a, U8 b) { return _mm256_min_epu8(a, b); }
    static U8 MaxBytes(U8 a, U8 b) { return _mm256_max_epu8(a, b); }
    static U8 AddBytes(U8 a, U8 b) { return _mm256_adds_epu8(a, b); }
    static U8 SubBytes(U8 a, U8 b) { return _mm256_subs_epu8(a, b); }
    static U8 Average(U8 a, U8 b) { return _mm256_avg_epu8(a, b); }
    static U8 AverageDown(U8 a, U8 b) {
        return _mm256_sub_epi8(_mm256_avg_epu8(a, b), _mm256_and_si256(_mm256_xor_si256(a, b), _mm256_set1_epi8(1)));
    }
    template <int n>
    static U8 LeanBytes(U8 a, U8 b) {
        const Pair sum = WeighSum(Together(a, b), MakeWeights(64 - n, n));
        return PackUnpacked({ShiftRight<6>(sum.low), ShiftRight<6>(sum.high)});
    }
    static U8 RaiseUpperHalf(U8 a) {
        const U8 upperHalf = _mm256_cmpgt_epi8(_mm256_setzero_si256(), a);  // −1 from 128 on
        return _mm256_adds_epu8(a, _mm256_and_si256(upperHalf, _mm256_set1_epi8(1)));
    }

    static U8 Pack(I16 low, I16 high) { return _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0xD8); }
    static U8 PackInterleaved(I16 even, I16 odd) {
        const U8 both = _mm256_packus_epi16(even, odd);  // in each half eight even ones, eight odd ones
        return _mm256_unpacklo_epi8(both, _mm256_srli_si256(both, 8));
    }
    static void StorePacked2(uint8_t* p, const Pair& a, const Pair& b) {
        const U8 turns = Halves(_mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15));
        StoreBytes(p, _mm256_shuffle_epi8(_mm256_packus_epi16(a.low, b.low), turns));
        StoreBytes(p + 32, _mm256_shuffle_epi8(_mm256_packus_epi16(a.high, b.high), turns));
    }
    static U8 FlipSigns(U8 v) { return _mm256_xor_si256(v, _mm256_set1_epi8(-128)); }
    static I16 SignedRepeatLow(U8 v) {
        const U8 spread = _mm256_permute4x64_epi64(FlipSigns(v), 0xD8);
        return _mm256_unpacklo_epi8(spread, spread);
    }
    static I16 SignedRepeatHigh(U8 v) {
        const U8 spread = _mm256_permute4x64_epi64(FlipSigns(v), 0xD8);
        return _mm256_unpackhi_epi8(spread, spread);
    }
    static I16 CentredRepeatLow(U8 v) {
        const U8 spread = _mm256_permute4x64_epi64(v, 0xD8);
        return _mm256_unpacklo_epi8(spread, FlipSigns(spread));
    }
    static I16 CentredRepeatHigh(U8 v) {
        const U8 spread = _mm256_permute4x64_epi64(v, 0xD8);
        return _mm256_unpackhi_epi8(spread, FlipSigns(spread));
    }
    static I16 EvenBytes(U8 v) { return _mm256_and_si256(v, _mm256_set1_epi16(0xFF)); }
    static I16 OddBytes(U8 v) { return _mm256_srli_epi16(v, 8); }

    static void StoreInterleaved2(uint8_t* p, U8 a, U8 b) {
        const U8 low = _mm256_unpacklo_epi8(a, b);
        const U8 high = _mm256_unpackhi_epi8(a, b);
        StoreBytes(p, _mm256_permute2x128_si256(low, high, 0x20));
        StoreBytes(p + 32, _mm256_permute2x128_si256(low, high, 0x31));
    }
    /// Samples less 128 have a sign, so that weights need none; what a weight of 0 would multiply by 256 counts 255 times and once.
    struct TripleWeights {
        U8 weights[TriplePieces::count];
        U8 samples[TriplePieces::count];
    };
    static TripleWeights MakeTripleWeights(const int16_t* w) {
        const __m128i words =
            _mm_setr_epi16(TripleWeightWord(w[0]), TripleWeightWord(w[1]), TripleWeightWord(w[2]), 0, 0, 0, 0, 0);
        TripleWeights made;
        for (int32_t i = 0; i < TriplePieces::count; ++i) {
            const auto piece = [](const uint8_t* bytes) {
                return _mm_load_si128(reinterpret_cast<const __m128i*>(bytes));
            };
            const U8 weights = Halves(_mm_shuffle_epi8(words, piece(triplePieces.weights[i])));
            const U8 samples = Halves(piece(triplePieces.samples[i]));
            const U8 alone = _mm256_cmpeq_epi16(weights, _mm256_setzero_si256());
            const U8 twice = _mm256_shuffle_epi8(
                samples, Halves(_mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14)));
            made.weights[i] = _mm256_blendv_epi8(weights, _mm256_set1_epi16(0x01FF), alone);
            made.samples[i] = _mm256_blendv_epi8(samples, twice, alone);
        }
        return made;
    }
    static void StorePulledTriples(uint8_t* out, const uint8_t* in, const TripleWeights& w) {
        for (int32_t group = 0; group < 2; ++group, in += 32, out += 48) {
            const auto piece = [&](int32_t i) {
                const U8 samples = _mm256_shuffle_epi8(FlipSigns(LoadBytes(in + TriplePieces::begin[i])), w.samples[i]);
                return ShiftRight<8>(_mm256_maddubs_epi16(w.weights[i], samples));
            };
            const I16 third = piece(2);
            const U8 upper = FlipSigns(_mm256_packs_epi16(piece(0), piece(1)));
            const U8 lower = FlipSigns(_mm256_packs_epi16(third, third));
            StoreTripleHalf(out, _mm256_castsi256_si128(upper), _mm256_castsi256_si128(lower));
            StoreTripleHalf(out + 24, _mm256_extracti128_si256(upper, 1), _mm256_extracti128_si256(lower, 1));
        }
    }

    /// Unpacking and its reverse keep to the halves of a register, which is all that is needed between the two.
    static Weights MakeWeights(int32_t a, int32_t b) {
        return _mm256_set1_epi16(static_cast<int16_t>((b << 8) | (a & 0xFF)));
    }
    static Pair Unpack(U8 v) {
        return {_mm256_unpacklo_epi8(v, _mm256_setzero_si256()), _mm256_unpackhi_epi8(v, _mm256_setzero_si256())};
    }
    static U8 Centre(U8 v) {
        const U8 upperHalf = _mm256_cmpgt_epi8(_mm256_setzero_si256(), v);  // −1 from 128 on
        return _mm256_subs_epi8(FlipSigns(v), upperHalf);
    }
    static Pair Repeat(U8 v) { return {_mm256_unpacklo_epi8(v, v), _mm256_unpackhi_epi8(v, v)}; }
    static Pair Sum(U8 a, U8 b) { return WeighSum(Together(a, b), _mm256_set1_epi8(1)); }
    static Both Together(U8 a, U8 b) { return {_mm256_unpacklo_epi8(a, b), _mm256_unpackhi_epi8(a, b)}; }
    static Pair WeighSum(Both v, Weights w) {
        return {_mm256_maddubs_epi16(v.low, w), _mm256_maddubs_epi16(v.high, w)};
    }
    static U8 PackUnpacked(Pair words) { return _mm256_packus_epi16(words.low, words.high); }

    static void LoadColumns(const uint8_t* const* rows, int32_t x, U8 (&tile)[16]) {
        for (int32_t i = 0; i < 16; ++i) tile[i] = Pieces(rows + i, x);
        Transpose(tile);
    }
    static void StoreColumns(uint8_t* const* rows, int32_t x, const uint8_t* columns) {
        U8 tile[16];
        for (int32_t i = 0; i < 16; ++i) tile[i] = LoadBytes(columns + 32 * i);
        Transpose(tile);
        for (int32_t i = 0; i < 16; ++i) StorePieces(rows + i, x, tile[i]);
    }

    /// Sums stand in the order of unpacked words, and packing undoes it.
    struct Sums {
        __m256i low, high;
    };
    using TapPair = __m256i;
    static Sums SetSums(int32_t v) { return {_mm256_set1_epi32(v), _mm256_set1_epi32(v)}; }
    static TapPair MakeTapPair(int16_t a, int16_t b) {
        return _mm256_set1_epi32(static_cast<int32_t>(static_cast<uint16_t>(a) | static_cast<uint32_t>(b) << 16));
    }
    static Sums AddProducts(Sums sums, I16 a, I16 b, TapPair taps) {
        return {_mm256_add_epi32(sums.low, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), taps)),
                _mm256_add_epi32(sums.high, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), taps))};
    }
    static Sums AddSums(Sums a, Sums b) { return {_mm256_add_epi32(a.low, b.low), _mm256_add_epi32(a.high, b.high)}; }
    static Sums SubSums(Sums a, Sums b) { return {_mm256_sub_epi32(a.low, b.low), _mm256_sub_epi32(a.high, b.high)}; }
    static Sums MinSums(Sums a, Sums b) { return {_mm256_min_epi32(a.low, b.low), _mm256_min_epi32(a.high, b.high)}; }
    static Sums MaxSums(Sums a, Sums b) { return {_mm256_max_epi32(a.low, b.low), _mm256_max_epi32(a.high, b.high)}; }
    template <int n>
    static Sums ShiftSums(Sums sums) {
        return {_mm256_srai_epi32(sums.low, n), _mm256_srai_epi32(sums.high, n)};
    }
    static Sums MulHighSums(Sums sums, int16_t factor) {
        // The lower byte and what is above it are multiplied on their own: both fit into a word.
        const TapPair lowWords = MakeTapPair(factor, 0);
        const auto scale = [&](__m256i v) {
            const __m256i upper = _mm256_madd_epi16(_mm256_srai_epi32(v, 8), lowWords);
            const __m256i lower = _mm256_madd_epi16(_mm256_and_si256(v, _mm256_set1_epi32(255)), lowWords);
            return _mm256_srai_epi32(_mm256_add_epi32(upper, _mm256_srai_epi32(lower, 8)), 8);
        };
        return {scale(sums.low), scale(sums.high)};
    }
    static I16 PackSums(Sums sums) { return _mm256_packs_epi32(sums.low, sums.high); }
    static void StoreInterleavedWords(int16_t* p, I16 a, I16 b) {
        const I16 low = _mm256_unpacklo_epi16(a, b);
        const I16 high = _mm256_unpackhi_epi16(a, b);
        Store(p, _mm256_permute2x128_si256(low, high, 0x20));
        Store(p + 16, _mm256_permute2x128_si256(low, high, 0x31));
    }

private:
    static void Transpose(U8 (&tile)[16]) {
        TransposeSquares(
            tile, [](U8 a, U8 b) { return _mm256_unpacklo_epi8(a, b); },
            [](U8 a, U8 b) { return _mm256_unpackhi_epi8(a, b); });
    }
    /// Sixteen columns of two rows, a row in each half.
    static U8 Pieces(const uint8_t* const* rows, int32_t x) {
        const auto piece = [=](int32_t row) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(rows[row] + x));
        };
        return _mm256_inserti128_si256(_mm256_castsi128_si256(piece(0)), piece(16), 1);
    }
    static void StorePieces(uint8_t* const* rows, int32_t x, U8 v) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(rows[0] + x), _mm256_castsi256_si128(v));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(rows[16] + x), _mm256_extracti128_si256(v, 1));
    }

    static void StoreTripleHalf(uint8_t* out, __m128i sixteen, __m128i eight) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), sixteen);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), eight);
    }
    static U8 Halves(__m128i v) { return _mm256_broadcastsi128_si256(v); }
};
static_assert(KernelLanes<Avx2Lanes>);

}  // namespace
}  // namespace clarivex
