#include "engine/cross_stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/guarded_plane.h"
#include "tests/support/sharpen_curve.h"

namespace clarivex {
namespace {

constexpr int32_t stride = 64;
constexpr CrossGains gains{5, 9, 250};

int32_t CoreOf(int32_t value, int32_t deadZone) {
    return value > deadZone ? value - deadZone : value < -deadZone ? value + deadZone : 0;
}

void RunOverStrips(GuardedPlane& plane, const CrossGains& crossGains) {
    std::vector<uint8_t> line(static_cast<size_t>((plane.width + 7) & ~7));
    CrossStage stage(crossGains, line.data());
    for (int32_t y = 0; y < plane.height; y += 16) stage.Run(plane.View(), y);
}

TEST(DeriveCrossGains, CountsInUnitsOfFive) {
    const CrossGains smoothing = DeriveCrossGains(Curve(-500, 500, -3));
    EXPECT_EQ(smoothing.base, -5);
    EXPECT_EQ(smoothing.deadZone, 15);
    EXPECT_EQ(DeriveCrossGains(Curve(0, 1, 1e6F)).deadZone, 0x3FFF);
    // The extra gain is what the unrounded base leaves: 5 · (2^0.6 − 1) = 2.58 and 5 · (2^0.9 − 1) − 2.58 = 1.75.
    EXPECT_EQ(DeriveCrossGains(Curve(0.6F, 0.3F, 0)).base, 3);
    EXPECT_EQ(DeriveCrossGains(Curve(0.6F, 0.3F, 0)).extra, 2);
}

/// Rows that the stage filters, and which of a pair each is: −1 for none.
std::vector<int32_t> PlaceInPair(int32_t height) {
    std::vector<int32_t> places(static_cast<size_t>(height), -1);
    for (int32_t y = 0; y < height; y += 16) {
        const bool last = y + 16 >= height;
        const int32_t first = std::max(y - 1, 0);
        const int32_t end = last ? height : y + 15;
        for (int32_t i = 0; i < (end - first) / 2 * 2; ++i) places[static_cast<size_t>(first + i)] = i % 2;
    }
    return places;
}

TEST(CrossStage, EqualsThePlainFormAtEveryHeight) {
    for (int32_t height = 1; height <= 66; ++height)
        for (const int32_t width : {1, 13, 64}) {
            GuardedPlane actual(width, height, stride, 1, static_cast<uint32_t>(height));
            const GuardedPlane before = actual;
            GuardedPlane expected = actual;
            const std::vector<int32_t> places = PlaceInPair(height);
            for (int32_t y = 0; y < height; ++y)
                for (int32_t x = 0; x < ((width + 7) & ~7) && places[static_cast<size_t>(y)] >= 0; ++x) {
                    const int32_t sample = before.At(x, y);
                    const int32_t measure =
                        2 * sample - before.At(x, std::max(y - 1, 0)) - before.At(x, std::min(y + 1, height - 1));
                    const int32_t rounding = places[static_cast<size_t>(y)] == 0 ? 4 : 12;
                    const int32_t detail = (CoreOf(9 * measure, 250) + 5 * measure + rounding) >> 4;
                    expected.At(x, y) = static_cast<uint8_t>(std::clamp(sample + detail, 0, 255));
                }
            RunOverStrips(actual, gains);
            EXPECT_TRUE(actual == expected) << height << ": " << FirstDifference(actual, expected);
        }
}

TEST(CrossColumns, EqualsThePlainFormWithTwoDeadZones) {
    for (const int32_t width : {1, 5, 16})
        for (const int32_t height : {1, 2, 3, 17}) {
            GuardedPlane actual(width, height, stride, 0, static_cast<uint32_t>(height));
            const GuardedPlane before = actual;
            GuardedPlane expected = actual;
            for (int32_t y = 0; y < height; ++y)
                for (int32_t x = 0; x < width; ++x) {
                    const int32_t sample = before.At(x, y);
                    const int32_t measure =
                        2 * sample - before.At(x, std::max(y - 1, 0)) - before.At(x, std::min(y + 1, height - 1));
                    const int32_t first = CoreOf(4 * measure, 250);
                    const int32_t rounding = (x + y) % 2 == 0 ? 12 : 4;
                    const int32_t detail = (5 * measure + first + CoreOf(first, 250) + rounding) >> 4;
                    expected.At(x, y) = static_cast<uint8_t>(std::clamp(sample + detail, 0, 255));
                }
            CrossColumns(actual.View(), gains);
            EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
        }
}

}  // namespace
}  // namespace clarivex
