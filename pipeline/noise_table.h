// The noise of one stream at the strength it asks for, in the form the output stages add it.
#pragma once

#include <cstdint>

#include "pipeline/noise_generator.h"
#include "runtime/memory.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// Tables of words made of a generator's planes. On the frame thread only. They wrap without a seam in both directions.
class NoiseTable {
public:
    /// planes  have to outlive the table. It takes its memory with the first Build.
    explicit NoiseTable(const NoiseGenerator& planes) : generator(planes) {}

    NoiseTable(const NoiseTable&) = delete;
    NoiseTable& operator=(const NoiseTable&) = delete;

    /// Builds the tables for `level`, the strength of the noise, unless they stand for exactly that level. An entry is four
    /// times 128 plus the noise at that strength, rounded to nearest and limited to −127 … 127.
    void Build(float level);

    /// Noise of row y of the current frame's picture, for luma, and for chroma samples of two planes in turn. Once built.
    GrainRow LumaGrain(int32_t y) const { return {RowIn(lumaWords, y), FirstColumn()}; }
    GrainRow ChromaGrain(int32_t y) const { return {RowIn(chromaWords, y), FirstColumn()}; }

    /// Where the current frame reads the tables.
    NoiseOffsets offsets;

    /// Strength that the tables were built for.
    float level = 0.0F;

private:
    static constexpr int32_t rows = NoiseGenerator::lumaSide;
    static constexpr int32_t wordStride = noisePeriod + noiseRepeated;

    int32_t FirstColumn() const { return offsets.x & (noisePeriod - 8); }
    const int16_t* RowIn(const AlignedArray<int16_t>& words, int32_t y) const {
        const uint32_t row = (static_cast<uint32_t>(offsets.y) + static_cast<uint32_t>(y)) % rows;
        return words.get() + row * wordStride;
    }

    void TakeMemory();
    void FillRow(int32_t y, float lumaScale, float chromaScale);

    const NoiseGenerator& generator;
    AlignedArray<int16_t> lumaWords;
    AlignedArray<int16_t> chromaWords;
};

}  // namespace clarivex
