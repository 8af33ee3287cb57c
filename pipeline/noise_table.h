// Film-like noise: float planes made once, and byte tables for the output stages that follow the strength asked for.
#pragma once

#include <cstdint>

#include "runtime/memory.h"
#include "runtime/planes.h"
#include "runtime/random.h"

namespace clarivex {

/// One per process; on the frame thread only. Both directions of the table wrap without a seam.
class NoiseTable {
public:
    static constexpr int32_t size = 256;     ///< rows and columns of the table
    static constexpr int32_t repeated = 64;  ///< entries that a row of words repeats from its start behind its end

    /// Generates the planes and builds level 0, which is all 128.
    NoiseTable();

    NoiseTable(const NoiseTable&) = delete;
    NoiseTable& operator=(const NoiseTable&) = delete;

    /// Rebuilds the tables for `level`, the strength of the noise, unless they stand for exactly that level.
    void Build(float level);

    /// Moves the offsets for the next frame, each by 32 … 221.
    void Advance();

    /// Luma noise of a row times four: entry x is that of column x & 255, for x = 0 … 319. row 0 … 255.
    const int16_t* LumaRow(int32_t row) const { return lumaWords.get() + row * wordStride; }

    /// Chroma noise of a row times four, first and second slot of a pair in turn, for 0 … 319 like LumaRow.
    const int16_t* ChromaRow(int32_t row) const { return chromaWords.get() + row * wordStride; }

    /// Table of 256 rows of 32 groups: 8 luma bytes and 8 interleaved chroma bytes, all biased by 128.
    Plane bytes;

    /// Running offsets of the current frame, wrapping in 32 bits: column (offsetX & ~7) & 255, row offsetY & 255.
    int32_t offsetX = 0;
    int32_t offsetY = 0;

    /// Strength that the tables were built for.
    float level = 0.0F;

private:
    static constexpr int32_t chromaSize = size / 2;
    static constexpr int32_t wordStride = size + repeated;

    void Generate();
    void FillTables();
    void FillByteRow(int32_t y, float lumaScale, float chromaScale);
    void FillWordRows(int32_t y);
    uint32_t DrawStep();

    Random15 random;
    AlignedArray<float> luma;
    AlignedArray<float> chromaA;
    AlignedArray<float> chromaB;
    SampleBlock byteBlock;
    AlignedArray<int16_t> lumaWords;
    AlignedArray<int16_t> chromaWords;
};

}  // namespace clarivex
