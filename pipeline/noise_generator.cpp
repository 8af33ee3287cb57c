#include "pipeline/noise_generator.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

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

}  // namespace

NoiseGenerator::NoiseGenerator()
    : luma(MakeAlignedArray<float>(lumaSide * lumaSide)),
      chromaA(MakeAlignedArray<float>(chromaSide * chromaSide)),
      chromaB(MakeAlignedArray<float>(chromaSide * chromaSide)) {
    const auto temporary = MakeAlignedArray<float>(lumaSide * lumaSide);
    constexpr double chromaScale = 0.056 * 1.0 * 15;
    GenerateSquare(random, {luma.get(), lumaSide}, {temporary.get(), lumaSide}, 0.84);
    GenerateSquare(random, {chromaA.get(), chromaSide}, {temporary.get(), chromaSide}, chromaScale);
    GenerateSquare(random, {chromaB.get(), chromaSide}, {temporary.get(), chromaSide}, chromaScale);
}

NoiseOffsets NoiseGenerator::Advance() {
    const auto moved = [this](int32_t offset) {  // offsets wrap, which a signed sum must not
        return static_cast<int32_t>(static_cast<uint32_t>(offset) + DrawStep());
    };
    offsets.y = moved(offsets.y);
    offsets.x = moved(offsets.x);
    return offsets;
}

uint32_t NoiseGenerator::DrawStep() {
    return static_cast<uint32_t>(std::floor(static_cast<float>(random.Next() / 32768.0) * 190.0)) + 32;
}

}  // namespace clarivex
