// Where the film-like noise comes from: float planes made once, and offsets into them that move with every frame.
#pragma once

#include <cstdint>

#include "runtime/memory.h"
#include "runtime/random.h"

namespace clarivex {

/// Where a frame reads the noise; both wrap in 32 bits. Column (x & ~7) & 255, row y & 255.
struct NoiseOffsets {
    int32_t x = 0;
    int32_t y = 0;
};

/// Planes of noise at strength 1, not changed once they are made, and one sequence of offsets. Two threads must not move
/// the offsets at once.
class NoiseGenerator {
public:
    static constexpr int32_t lumaSide = 256;    ///< rows and columns of luma noise
    static constexpr int32_t chromaSide = 128;  ///< and of each chroma plane's

    NoiseGenerator();

    NoiseGenerator(const NoiseGenerator&) = delete;
    NoiseGenerator& operator=(const NoiseGenerator&) = delete;

    /// Rows of the planes, which wrap without a seam in both directions. row 0 … side − 1.
    const float* LumaRow(int32_t row) const { return luma.get() + row * lumaSide; }
    const float* ChromaRowA(int32_t row) const { return chromaA.get() + row * chromaSide; }
    const float* ChromaRowB(int32_t row) const { return chromaB.get() + row * chromaSide; }

    /// The offsets of the next frame, each 32 … 221 further than the last one's.
    NoiseOffsets Advance();

private:
    uint32_t DrawStep();

    Random15 random;
    AlignedArray<float> luma;
    AlignedArray<float> chromaA;
    AlignedArray<float> chromaB;
    NoiseOffsets offsets;
};

}  // namespace clarivex
