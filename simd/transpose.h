// Sixteen rows turned into sixteen columns, for lanes whose registers consist of pieces of 16 bytes.
#pragma once

#include <cstdint>

namespace clarivex {
namespace {

/// Transposes squares of 16 · 16 bytes, one in each piece of the registers: four times, the lower and the upper half of the
/// registers are shuffled together like two packs of cards.
///
/// low, high  interleave the bytes of the lower or upper halves of two registers' pieces
template <class Register, class Low, class High>
void TransposeSquares(Register (&rows)[16], const Low& low, const High& high) {
    for (int32_t round = 0; round < 4; ++round) {
        Register shuffled[16];
        for (int32_t i = 0; i < 8; ++i) {
            shuffled[2 * i] = low(rows[i], rows[i + 8]);
            shuffled[2 * i + 1] = high(rows[i], rows[i + 8]);
        }
        for (int32_t i = 0; i < 16; ++i) rows[i] = shuffled[i];
    }
}

}  // namespace
}  // namespace clarivex
