// Where three outputs for each pair of inputs take their samples from, for lanes that shuffle bytes within pieces of 16.
#pragma once

#include <cstdint>

namespace clarivex {
namespace {

/// Outputs stand in threes of pieces of 8; a piece takes its samples from 16 that begin at a place of its own.
struct TriplePieces {
    static constexpr int32_t count = 3;
    static constexpr int32_t begin[count] = {-1, 4, 9};

    alignas(16) uint8_t samples[count][16];  ///< of each output, its own one and the one it is pulled towards
    alignas(16) uint8_t weights[count][16];  ///< of each output, two bytes of those of the three weights
};

constexpr TriplePieces MakeTriplePieces() {
    TriplePieces pieces{};
    for (int32_t i = 0; i < 24; ++i) {
        const int32_t piece = i / 8, byte = i % 8 * 2, kind = i % 3;
        const int32_t own = i / 3 * 2 + (kind == 2 ? 1 : 0) - TriplePieces::begin[piece];
        pieces.samples[piece][byte] = static_cast<uint8_t>(own);
        pieces.samples[piece][byte + 1] = static_cast<uint8_t>(kind == 0 ? own - 1 : own + 1);
        pieces.weights[piece][byte] = static_cast<uint8_t>(2 * kind);
        pieces.weights[piece][byte + 1] = static_cast<uint8_t>(2 * kind + 1);
    }
    return pieces;
}
constexpr TriplePieces triplePieces = MakeTriplePieces();

/// The weights of a sample, 256 − weight, and of the one it is pulled towards, as two bytes; both are 0 for weight 0.
constexpr int16_t TripleWeightWord(int16_t weight) {
    return static_cast<int16_t>(static_cast<uint16_t>(weight << 8 | ((256 - weight) & 255)));
}

}  // namespace
}  // namespace clarivex
