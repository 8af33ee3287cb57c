// The noise of one stream at the strength it asks for, in the form the output stages add it.
#pragma once

#include <cstdint>

#include "pipeline/noise_generator.h"
#include "runtime/memory.h"
#include "runtime/planes.h"

namespace clarivex {

/// Byte tables made of a generator's planes. On the frame thread only. Both directions of the table wrap without a seam.
class NoiseTable {
public:
    static constexpr int32_t size = NoiseGenerator::lumaSide;  ///< rows and columns of the table
    static constexpr int32_t repeated = 64;  ///< entries that a row of words repeats from its start behind its end

    /// planes  have to outlive the table. It takes its memory with the first Build.
    explicit NoiseTable(const NoiseGenerator& planes) : generator(planes) {}

    NoiseTable(const NoiseTable&) = delete;
    NoiseTable& operator=(const NoiseTable&) = delete;

    /// Builds the tables for `level`, the strength of the noise, unless they stand for exactly that level. Level 0 is all
    /// 128.
    void Build(float level);

    /// Luma noise of a row times four: entry x is that of column x & 255, for x = 0 … 319. row 0 … 255. Once built.
    const int16_t* LumaRow(int32_t row) const { return lumaWords.get() + row * wordStride; }

    /// Chroma noise of a row times four, first and second slot of a pair in turn, for 0 … 319 like LumaRow.
    const int16_t* ChromaRow(int32_t row) const { return chromaWords.get() + row * wordStride; }

    /// Table of 256 rows of 32 groups: 8 luma bytes and 8 interleaved chroma bytes, all biased by 128.
    Plane bytes;

    /// Where the current frame reads the table.
    NoiseOffsets offsets;

    /// Strength that the tables were built for.
    float level = 0.0F;

private:
    static constexpr int32_t wordStride = size + repeated;

    void TakeMemory();
    void FillTables();
    void FillByteRow(int32_t y, float lumaScale, float chromaScale);
    void FillWordRows(int32_t y);

    const NoiseGenerator& generator;
    SampleBlock byteBlock;
    AlignedArray<int16_t> lumaWords;
    AlignedArray<int16_t> chromaWords;
};

}  // namespace clarivex
