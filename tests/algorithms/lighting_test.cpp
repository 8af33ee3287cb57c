#include "algorithms/lighting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "runtime/random.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

constexpr int64_t oneFrame = 400'000;
constexpr int64_t longGap = 50'000'000;

/// A frame whose planes lie in heap blocks of exactly their size, so that AddressSanitizer sees every stray read.
class Frame {
public:
    Frame(int32_t width, int32_t height, uint8_t luma, uint8_t first = 128, uint8_t second = 128)
        : planes{Filled(width, height, luma, blocks[0]), Filled((width + 1) / 2, (height + 1) / 2, first, blocks[1]),
                 Filled((width + 1) / 2, (height + 1) / 2, second, blocks[2])} {}

    const Plane& Luma() const { return planes.luma; }
    const ImagePlanes& Planes() const { return planes; }

    static void Fill(const Plane& plane, const std::function<int32_t(int32_t y)>& sample) {
        for (int32_t y = 0; y < plane.height; ++y)
            for (int32_t x = 0; x < plane.width; ++x) plane.Row(y)[x] = static_cast<uint8_t>(sample(y));
    }

private:
    static Plane Filled(int32_t width, int32_t height, uint8_t sample, std::unique_ptr<uint8_t[]>& block) {
        block = std::make_unique<uint8_t[]>(static_cast<size_t>(width * height));
        const Plane plane{block.get(), width, height, width};
        Fill(plane, [sample](int32_t) { return sample; });
        return plane;
    }

    std::unique_ptr<uint8_t[]> blocks[3];
    ImagePlanes planes;
};

/// The levels that a frame alone asks for.
LightingState LevelsOf(const Frame& frame) {
    LightingState state;
    AnalyseLighting(frame.Planes(), longGap, state, scalarKernels);
    return state;
}

TEST(AnalyseLighting, UniformFramesGiveLimitedLevels) {
    const LightingState dark = LevelsOf(Frame(64, 64, 16));
    EXPECT_NEAR(dark.trackedBlack, 16.001, 1e-4);
    EXPECT_FLOAT_EQ(dark.trackedWhite, 185.0F);
    const LightingState bright = LevelsOf(Frame(64, 64, 235));
    EXPECT_FLOAT_EQ(bright.trackedBlack, 103.0F);
    EXPECT_FLOAT_EQ(bright.trackedWhite, 235.0F);
}

TEST(AnalyseLighting, FramesWithoutASampledPairCountAsEmpty) {
    for (const int32_t size : {1, 2, 11, 12}) {
        const LightingState levels = LevelsOf(Frame(size, size, 200));
        EXPECT_FLOAT_EQ(levels.trackedBlack, 16.0F) << size;
        EXPECT_FLOAT_EQ(levels.trackedWhite, 185.0F) << size;
    }
    EXPECT_GT(LevelsOf(Frame(13, 13, 200)).trackedBlack, 16.0F);
}

TEST(AnalyseLighting, ReadsOnlyThePlanesOfFramesOfAnySize) {
    for (int32_t height = 1; height <= 31; ++height)
        for (int32_t width = 1; width <= 31; ++width) LevelsOf(Frame(width, height, 90));
    LevelsOf(Frame(1301, 253, 90));
}

TEST(AnalyseLighting, TheGridFollowsTheHeight) {
    struct Case {
        int32_t height;
        int32_t margin;
        int32_t step;
    };
    for (const auto& [height, margin, step] : {Case{139, 6, 1}, Case{140, 8, 2}, Case{249, 8, 2}, Case{250, 12, 4}}) {
        const Frame frame(64, height, 0);
        const auto sampled = [margin = margin, step = step, height = height](int32_t y) {
            return y >= margin && y < height - margin && (y - margin) % step == 0;
        };
        Frame::Fill(frame.Luma(), [&](int32_t y) { return sampled(y) ? 90 : 255; });
        const LightingState levels = LevelsOf(frame);
        EXPECT_NEAR(levels.trackedBlack, LevelsOf(Frame(64, height, 90)).trackedBlack, 1e-5) << height;
        EXPECT_NEAR(levels.trackedWhite, 222.001, 1e-4) << "no bright row is looked at, height " << height;
        std::fill_n(frame.Luma().Row(margin), 64, uint8_t{255});
        EXPECT_FLOAT_EQ(LevelsOf(frame).trackedWhite, 235.0F) << "the first row is looked at, height " << height;
    }
}

TEST(AnalyseLighting, ColumnsReachFromMarginToMargin) {
    // Of a width of 21 the pairs at 6, 8, 10, 12 and 14 are looked at, with the chroma columns 3 … 7.
    const Frame frame(21, 21, 90);
    const LightingState plain = LevelsOf(frame);
    for (const int32_t x : {5, 16}) frame.Luma().Row(10)[x] = 255;
    for (const int32_t x : {2, 8}) frame.Planes().second.Row(5)[x] = frame.Planes().third.Row(5)[x] = 255;
    EXPECT_EQ(LevelsOf(frame).trackedWhite, plain.trackedWhite);
    frame.Planes().second.Row(5)[7] = 255;
    EXPECT_GT(LevelsOf(frame).trackedWhite, plain.trackedWhite);
}

TEST(AnalyseLighting, LargeFramesLoseANoiseFloor) {
    // 394 rows of 788 pairs with 5 votes each: a vote is taken from every level. 80 levels have one pair each.
    const Frame frame(1600, 1600, 100);
    for (int32_t level = 16; level < 96; ++level)
        std::fill_n(frame.Luma().Row(12) + 2 * level, 2, static_cast<uint8_t>(level));
    const double votes = 394 * 788 * 5;
    const double below = 80 * (5 - 1);
    const double main = votes - 80 * 5 - 1;
    EXPECT_NEAR(LevelsOf(frame).trackedBlack, 100.0 + (0.001 * (main + below) - below) / main, 2e-5);
}

TEST(AnalyseLighting, LevelsAreTakenOutrightAfterALongGap) {
    const Frame frame(64, 64, 60);
    LightingState state;
    AnalyseLighting(frame.Planes(), 49'899'999, state, scalarKernels);
    EXPECT_LT(state.trackedBlack, 30.0F);
    AnalyseLighting(frame.Planes(), 49'900'000, state, scalarKernels);
    EXPECT_NEAR(state.trackedBlack, 60.001, 1e-4);
    EXPECT_NEAR(state.trackedWhite, 192.001, 1e-4);
}

// Levels travel through single precision many times over; every build must round them at the same places.
TEST(AnalyseLighting, FollowsTwoHundredFramesToTheLastBit) {
    Random15 random;
    LightingState state;
    LightingCorrection correction;
    for (int32_t i = 0; i < 200; ++i) {
        const Frame frame(46, 20, 0);
        const int32_t base = i * 7 % 200;
        const int32_t span = 1 + i * 13 % 56;
        const auto fill = [&](const Plane& plane, auto sample) {
            for (int32_t k = 0; k < plane.width * plane.height; ++k) plane.data[k] = static_cast<uint8_t>(sample());
        };
        fill(frame.Luma(), [&] { return base + random.Next() % span; });
        fill(frame.Planes().second, [&] { return random.Next() >> 7; });
        fill(frame.Planes().third, [&] { return random.Next() >> 7; });
        correction = AnalyseLighting(frame.Planes(), 333'333, state, scalarKernels);
    }
    EXPECT_EQ(state.trackedBlack, 0x1.004a98p+4F);
    EXPECT_EQ(state.trackedWhite, 0x1.d480a8p+7F);
    EXPECT_EQ(correction.lumaGain, 0x1.00e650p+0F);
    EXPECT_EQ(correction.lumaOffset, -0x1.312ac0p-4F);
    EXPECT_EQ(correction.chromaGainV, 0x1.098706p+0F);
    EXPECT_EQ(correction.chromaOffsetV, -0x1.30e0bcp+2F);
}

}  // namespace
}  // namespace clarivex
