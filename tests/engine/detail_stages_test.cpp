#include "engine/detail_stages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/guarded_plane.h"

namespace clarivex {
namespace {

constexpr int32_t stride = 64;

int32_t CoreOf(int32_t value, int32_t deadZone) {
    return value > deadZone ? value - deadZone : value < -deadZone ? value + deadZone : 0;
}

int32_t Limited(int32_t value) { return std::clamp(value, 0, 255); }

int32_t SimplyLimited(int32_t left, int32_t sample, int32_t right, const SimpleLimits& limits) {
    const int32_t towardsLeft = Limited(sample + (((left - sample) * limits.neighbourWeight) >> 6));
    const int32_t towardsRight = Limited(sample + (((right - sample) * limits.neighbourWeight) >> 6));
    const int32_t first = CoreOf(limits.gain * (2 * sample - left - right), limits.deadZone);
    const int32_t sharpened = Limited(sample + ((first + CoreOf(first, limits.deadZone) + 16) >> 5));
    return std::clamp(sharpened, std::min({towardsLeft, sample, towardsRight}),
                      std::max({towardsLeft, sample, towardsRight}));
}

TEST(LimitEdgesSimple, EqualsThePlainFormAtEveryWidth) {
    for (const SimpleLimits& limits : {SimpleLimits{}, SimpleLimits{15, 90, 100}, SimpleLimits{30, 0, 20}})
        for (int32_t width = 1; width <= stride; ++width) {
            GuardedPlane actual(width, 3, stride, 1, static_cast<uint32_t>(width));
            GuardedPlane before = actual;
            if (width % 4 != 0)
                for (int32_t y = 0; y < 3; ++y) before.At(width, y) = before.At(width - 1, y);
            GuardedPlane expected = before;
            for (int32_t y = 0; y < 3; ++y)
                for (int32_t x = 0; x < (width + 3) / 4 * 4; ++x) {
                    const bool repeat = x == width - 1 || x == stride - 1;
                    const int32_t right = before.At(repeat ? x : x + 1, y);
                    expected.At(x, y) = static_cast<uint8_t>(
                        SimplyLimited(before.At(std::max(x - 1, 0), y), before.At(x, y), right, limits));
                }
            LimitEdgesSimple(actual.View(), limits);
            EXPECT_TRUE(actual == expected) << width << ": " << FirstDifference(actual, expected);
        }
}

TEST(DeriveBoosterGains, LimitsTheDeadZone) {
    EXPECT_EQ(DeriveBoosterGains(10, 30).gain, 7);
    EXPECT_EQ(DeriveBoosterGains(10, 30).deadZone, 75);
    EXPECT_EQ(DeriveBoosterGains(2'000'000, 2'000'000).deadZone, 0x3FFF >> 2);
}

TEST(BoostSmallSignals, EqualsThePlainFormAtEveryWidth) {
    const BoosterGains gains{5, 90};
    for (int32_t width = 1; width <= stride; ++width) {
        GuardedPlane actual(width, 2, stride, 0, static_cast<uint32_t>(width));
        const GuardedPlane before = actual;
        GuardedPlane expected = actual;
        for (int32_t y = 0; y < 2; ++y) {
            const auto smallDetail = [&](int32_t x) {
                if (x < 4) return 0;
                const int32_t detail = 5 * (2 * before.At(x, y) - before.At(x - 2, y) - before.At(x + 2, y));
                return std::clamp(detail, -90, 90);
            };
            for (int32_t x = 0; x < (width - 8) / 8 * 8; ++x) {
                const int32_t sum = smallDetail(x - 1) + smallDetail(x) + smallDetail(x + 1);
                expected.At(x, y) = static_cast<uint8_t>(Limited(before.At(x, y) + ((sum + 32) >> 6)));
            }
        }
        BoostSmallSignals(actual.View(), gains);
        EXPECT_TRUE(actual == expected) << width << ": " << FirstDifference(actual, expected);
    }
}

}  // namespace
}  // namespace clarivex
