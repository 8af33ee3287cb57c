#include "pipeline/noise_table.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

static_assert(NoiseGenerator::lumaSide == noisePeriod && 2 * NoiseGenerator::chromaSide == noisePeriod);

int16_t NoiseWord(float sample, float scale) {
    const float limited = std::fmin(std::fmax(sample * scale, -127.0F), 127.0F);
    return static_cast<int16_t>(4 * (std::lrint(limited) + 128));
}

}  // namespace

void NoiseTable::Build(float newLevel) {
    if (lumaWords != nullptr && newLevel == level) return;
    TakeMemory();
    level = newLevel;
    const auto lumaScale = static_cast<float>(0.5 * level);
    const auto chromaScale = static_cast<float>(0.33 * level);
    for (int32_t y = 0; y < rows; ++y) FillRow(y, lumaScale, chromaScale);
}

void NoiseTable::TakeMemory() {
    if (lumaWords != nullptr) return;
    chromaWords = MakeAlignedArray<int16_t>(wordStride * rows);
    lumaWords = MakeAlignedArray<int16_t>(wordStride * rows);
}

void NoiseTable::FillRow(int32_t y, float lumaScale, float chromaScale) {
    int16_t* luma = lumaWords.get() + y * wordStride;
    int16_t* chroma = chromaWords.get() + y * wordStride;
    const float* lumaNoise = generator.LumaRow(y);
    const float* chromaNoise[2] = {generator.ChromaRowA(y / 2), generator.ChromaRowB(y / 2)};
    for (int32_t x = 0; x < noisePeriod; ++x) {
        luma[x] = NoiseWord(lumaNoise[x], lumaScale);
        chroma[x] = NoiseWord(chromaNoise[x % 2][x / 2], chromaScale);
    }
    std::copy_n(luma, noiseRepeated, luma + noisePeriod);
    std::copy_n(chroma, noiseRepeated, chroma + noisePeriod);
}

}  // namespace clarivex
