#include "pipeline/noise_table.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

constexpr int32_t groupBytes = 16;   // 8 luma bytes, 8 chroma bytes
constexpr int32_t groupColumns = 8;  // luma columns that a group covers
constexpr int32_t bytesStride = NoiseTable::size / groupColumns * groupBytes;

// A square plane of floats whose neighbours wrap around; the side is a power of two.
struct FloatSquare {
    float* samples;
    int32_t side;

    float& At(int32_t x, int32_t y) const { return samples[(y & (side - 1)) * side + (x & (side - 1))]; }
};

// The difference of two uniform values, squared with its sign kept: most samples lie near 0.
float DrawSample(Random15& random) {
    const auto uniform = [&random] { return static_cast<float>(random.Next() / 32768.0 * 126 - 63); };
    const double a = uniform();
    const double b = uniform();
    const double v = static_cast<float>((a - b) / 126);
    const double s = v > 0 ? v * v : -(v * v);
    return static_cast<float>(126 * s * 0.4);
}

// target = source + weight · (left neighbour + right neighbour)
void FilterRows(const FloatSquare& source, const FloatSquare& target, double weight) {
    for (int32_t y = 0; y < source.side; ++y) {
        for (int32_t x = 0; x < source.side; ++x) {
            target.At(x, y) =
                static_cast<float>(source.At(x, y) + weight * source.At(x - 1, y) + weight * source.At(x + 1, y));
        }
    }
}

// target = source + weight · (neighbour above + neighbour below)
void FilterColumns(const FloatSquare& source, const FloatSquare& target, double weight) {
    for (int32_t y = 0; y < source.side; ++y) {
        for (int32_t x = 0; x < source.side; ++x) {
            target.At(x, y) =
                static_cast<float>(source.At(x, y) + weight * source.At(x, y - 1) + weight * source.At(x, y + 1));
        }
    }
}

void GenerateSquare(Random15& random, const FloatSquare& square, const FloatSquare& temporary, double scale) {
    const auto count = static_cast<int32_t>(square.side * square.side);
    std::generate_n(square.samples, count, [&random] { return DrawSample(random); });
    constexpr double highPass = -0.5;
    constexpr double lowPass = 0.2;
    FilterRows(square, temporary, highPass);
    FilterColumns(temporary, square, highPass);
    FilterRows(square, temporary, lowPass);
    FilterColumns(temporary, square, lowPass);
    std::transform(square.samples, square.samples + count, square.samples,
                   [scale](float sample) { return static_cast<float>(sample * scale); });
}

uint8_t NoiseByte(float sample, float scale) {
    const float product = sample * scale;
    return static_cast<uint8_t>(std::lrint(std::fmin(std::fmax(product, -127.0F), 127.0F)) + 128);
}

}  // namespace

NoiseTable::NoiseTable()
    : luma(MakeAlignedArray<float>(size * size)),
      chromaA(MakeAlignedArray<float>(chromaSize * chromaSize)),
      chromaB(MakeAlignedArray<float>(chromaSize * chromaSize)),
      byteBlock(MakeAlignedArray<uint8_t>(bytesStride * size)),
      lumaWords(MakeAlignedArray<int16_t>(wordStride * size)),
      chromaWords(MakeAlignedArray<int16_t>(wordStride * size)) {
    bytes = {byteBlock.get(), bytesStride, size, bytesStride};
    Generate();
    FillTables();
}

void NoiseTable::Generate() {
    const auto temporary = MakeAlignedArray<float>(size * size);
    constexpr double chromaScale = 0.056 * 1.0 * 15;
    GenerateSquare(random, {luma.get(), size}, {temporary.get(), size}, 0.84);
    GenerateSquare(random, {chromaA.get(), chromaSize}, {temporary.get(), chromaSize}, chromaScale);
    GenerateSquare(random, {chromaB.get(), chromaSize}, {temporary.get(), chromaSize}, chromaScale);
}

void NoiseTable::Build(float newLevel) {
    if (newLevel == level) {
        return;
    }
    level = newLevel;
    FillTables();
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
    const float* lumaRow = luma.get() + y * size;
    const float* chromaRowA = chromaA.get() + (y >> 1) * chromaSize;
    const float* chromaRowB = chromaB.get() + (y >> 1) * chromaSize;
    uint8_t* out = bytes.Row(y);
    for (int32_t x = 0; x < size; x += groupColumns) {
        for (int32_t i = 0; i < groupColumns; ++i) {
            *out++ = NoiseByte(lumaRow[x + i], lumaScale);
        }
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

void NoiseTable::Advance() {
    const auto moved = [this](int32_t offset) {  // offsets wrap, which a signed sum must not
        return static_cast<int32_t>(static_cast<uint32_t>(offset) + DrawStep());
    };
    offsetY = moved(offsetY);
    offsetX = moved(offsetX);
}

uint32_t NoiseTable::DrawStep() {
    return static_cast<uint32_t>(std::floor(static_cast<float>(random.Next() / 32768.0) * 190.0)) + 32;
}

}  // namespace clarivex
