#include "pipeline/noise_table.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

constexpr int32_t groupBytes = 16;   // 8 luma bytes, 8 chroma bytes
constexpr int32_t groupColumns = 8;  // luma columns that a group covers
constexpr int32_t bytesStride = NoiseTable::size / groupColumns * groupBytes;

uint8_t NoiseByte(float sample, float scale) {
    const float product = sample * scale;
    return static_cast<uint8_t>(std::lrint(std::fmin(std::fmax(product, -127.0F), 127.0F)) + 128);
}

}  // namespace

void NoiseTable::Build(float newLevel) {
    if (byteBlock != nullptr && newLevel == level) return;
    TakeMemory();
    level = newLevel;
    FillTables();
}

void NoiseTable::TakeMemory() {
    if (byteBlock != nullptr) return;
    lumaWords = MakeAlignedArray<int16_t>(wordStride * size);
    chromaWords = MakeAlignedArray<int16_t>(wordStride * size);
    byteBlock = MakeAlignedArray<uint8_t>(bytesStride * size);
    bytes = {byteBlock.get(), bytesStride, size, bytesStride};
}

void NoiseTable::FillTables() {
    const auto lumaScale = static_cast<float>(0.5 * level);
    const auto chromaScale = static_cast<float>(0.33 * level);
    for (int32_t y = 0; y < size; ++y) {
        FillByteRow(y, lumaScale, chromaScale);
        FillWordRows(y);
    }
}

void NoiseTable::FillByteRow(int32_t y, float lumaScale, float chromaScale) {
    const float* lumaRow = generator.LumaRow(y);
    const float* chromaRowA = generator.ChromaRowA(y >> 1);
    const float* chromaRowB = generator.ChromaRowB(y >> 1);
    uint8_t* out = bytes.Row(y);
    for (int32_t x = 0; x < size; x += groupColumns) {
        for (int32_t i = 0; i < groupColumns; ++i) *out++ = NoiseByte(lumaRow[x + i], lumaScale);
        for (int32_t i = x / 2; i < (x + groupColumns) / 2; ++i) {
            *out++ = NoiseByte(chromaRowA[i], chromaScale);
            *out++ = NoiseByte(chromaRowB[i], chromaScale);
        }
    }
}

void NoiseTable::FillWordRows(int32_t y) {
    int16_t* lumaRow = lumaWords.get() + y * wordStride;
    int16_t* chromaRow = chromaWords.get() + y * wordStride;
    const uint8_t* row = bytes.Row(y);
    for (int32_t x = 0; x < size; ++x) {
        const uint8_t* group = row + x / groupColumns * groupBytes;
        lumaRow[x] = static_cast<int16_t>(group[x % groupColumns] << 2);
        chromaRow[x] = static_cast<int16_t>(group[groupColumns + x % groupColumns] << 2);
    }
    std::copy_n(lumaRow, repeated, lumaRow + size);
    std::copy_n(chromaRow, repeated, chromaRow + size);
}

}  // namespace clarivex
