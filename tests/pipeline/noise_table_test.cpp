// The noise against the rules it is made by: drawn, filtered by its neighbours, scaled and wrapped.
#include "pipeline/noise_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace clarivex {
namespace {

constexpr int32_t side = NoiseGenerator::lumaSide;

/// One plane drawn in order, each sample then weighed with two neighbours on all sides. The four filters of the
/// generator together weigh rows and columns by the same five taps.
std::vector<double> PlainNoise(Random15& random, int32_t planeSide, double scale) {
    const auto count = static_cast<size_t>(planeSide * planeSide);
    std::vector<double> drawn(count), noise(count);
    for (double& sample : drawn) {
        const double first = random.Next(), second = random.Next();
        const double distance = (first - second) / 32768;
        sample = scale * 126 * 0.4 * distance * std::abs(distance);
    }
    constexpr double taps[5] = {-0.1, -0.3, 0.8, -0.3, -0.1};
    const auto index = [&](int32_t x, int32_t y) {
        return static_cast<size_t>((y + planeSide) % planeSide * planeSide + (x + planeSide) % planeSide);
    };
    for (int32_t y = 0; y < planeSide; ++y)
        for (int32_t x = 0; x < planeSide; ++x)
            for (int32_t tap = 0; tap < 25; ++tap)
                noise[index(x, y)] += taps[tap % 5] * taps[tap / 5] * drawn[index(x + tap % 5 - 2, y + tap / 5 - 2)];
    return noise;
}

TEST(NoiseGenerator, WeighsEachSampleWithTheTwoAroundIt) {
    const NoiseGenerator generator;
    Random15 random;
    const auto luma = PlainNoise(random, side, 0.84);
    const auto first = PlainNoise(random, side / 2, 0.84), second = PlainNoise(random, side / 2, 0.84);
    for (size_t i = 0; i < luma.size(); ++i) ASSERT_NEAR(generator.LumaRow(0)[i], luma[i], 1e-4) << i;
    for (size_t i = 0; i < first.size(); ++i) {
        ASSERT_NEAR(generator.ChromaRowA(0)[i], first[i], 1e-4) << i;
        ASSERT_NEAR(generator.ChromaRowB(0)[i], second[i], 1e-4) << i;
    }
}

int32_t PlainWord(double sample, double strength, float level) {
    const float product = static_cast<float>(sample) * static_cast<float>(strength * level);
    return 4 * (128 + static_cast<int32_t>(std::nearbyint(std::clamp(product, -127.0F, 127.0F))));
}

TEST(NoiseTable, ScalesAndWrapsTheGeneratorsPlanes) {
    const NoiseGenerator generator;
    NoiseTable table(generator);
    for (const float level : {0.75F, 0.0F, 3.0F, 1000.0F, std::numeric_limits<float>::infinity()}) {
        table.Build(level);
        table.offsets = {INT32_MAX - 96, INT32_MAX - 40};  // columns go by eight; 41 rows before they wrap
        for (int32_t y = 0; y < side + 60; ++y) {
            const GrainRow luma = table.LumaGrain(y), chroma = table.ChromaGrain(y);
            ASSERT_EQ(luma.firstColumn, 152);
            ASSERT_EQ(chroma.firstColumn, 152);
            const int32_t row = (y + side - 41) % side;
            for (int32_t x = 0; x < noisePeriod + noiseRepeated; ++x) {
                const int32_t column = x % side;
                const float* chromaRow = x % 2 == 0 ? generator.ChromaRowA(row / 2) : generator.ChromaRowB(row / 2);
                ASSERT_EQ(luma.words[x], PlainWord(generator.LumaRow(row)[column], 0.5, level)) << x << ", " << y;
                ASSERT_EQ(chroma.words[x], PlainWord(chromaRow[column / 2], 0.33, level)) << x << ", " << y;
            }
        }
    }
}

TEST(NoiseGenerator, MovesEachOffsetBy32To221AndWraps) {
    NoiseGenerator generator;
    NoiseOffsets last = generator.Advance();
    EXPECT_EQ(last.x, 117);
    EXPECT_EQ(last.y, 61);
    int32_t least = 1000, most = 0, wraps = 0;
    for (int i = 0; i < 20'000'000; ++i) {  // far enough to pass 2³¹
        const NoiseOffsets next = generator.Advance();
        const auto step = static_cast<int32_t>(static_cast<uint32_t>(next.x) - static_cast<uint32_t>(last.x));
        least = std::min(least, step);
        most = std::max(most, step);
        wraps += next.x < last.x ? 1 : 0;
        last = next;
    }
    EXPECT_EQ(least, 32);
    EXPECT_EQ(most, 221);
    EXPECT_EQ(wraps, 1);
}

}  // namespace
}  // namespace clarivex
