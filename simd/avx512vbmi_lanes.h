// What processors with AVX-512's byte permutations add to its lanes.
#pragma once

#include <cstdint>

#include "simd/avx512_lanes.h"

namespace clarivex {
namespace {

struct Avx512VbmiLanes : Avx512Lanes {
    /// A word for each byte: its lower and its upper half in 256 bytes each.
    struct WordTable {
        U8 low[4], high[4];
    };
    static WordTable LoadWordTable(const uint8_t* bytes) {
        WordTable table;
        for (int32_t i = 0; i < 4; ++i) {
            table.low[i] = LoadBytes(bytes + 64 * i);
            table.high[i] = LoadBytes(bytes + 256 + 64 * i);
        }
        return table;
    }

    /// The words of all bytes, those of the first `width` in `low`.
    static void LookUp(const WordTable& table, U8 bytes, I16& low, I16& high) {
        const U8 places = Spread(bytes);
        const __mmask64 upperHalf = _mm512_movepi8_mask(places);
        const auto half = [&](const U8(&parts)[4]) {
            return _mm512_mask_blend_epi8(upperHalf, _mm512_permutex2var_epi8(parts[0], places, parts[1]),
                                          _mm512_permutex2var_epi8(parts[2], places, parts[3]));
        };
        const U8 lowHalves = half(table.low), highHalves = half(table.high);
        low = _mm512_unpacklo_epi8(lowHalves, highHalves);
        high = _mm512_unpackhi_epi8(lowHalves, highHalves);
    }
};
static_assert(KernelLanes<Avx512VbmiLanes>);

}  // namespace
}  // namespace clarivex
