#include "algorithms/detail_kernels.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

TEST(Core, IsADeadZoneThatWrapsAtTheTop) {
    EXPECT_EQ(Core(10, 4), 6);
    EXPECT_EQ(Core(-10, 4), -6);
    EXPECT_EQ(Core(-32768, 16383), -16385);
    EXPECT_EQ(Core(32767, 1), -32768) << "the raised value leaves 16 bits";
    EXPECT_EQ(WideCore(-1'000'000'000'000, 1), -999'999'999'999);
}

TEST(MakeKneeGains, MovesAWideBaseBeyondSixteenBitsIntoTheExtraGain) {
    const KneeGains gains = MakeKneeGains({.wideBase = 40000, .wideExtra = -20000, .wideKnee = 1000 << 13});
    EXPECT_EQ(gains.wideBase, 32767);
    EXPECT_EQ(gains.wideHalfExtra, 40000 - 32767 - 10000);
    EXPECT_EQ(gains.wideKnee, 1000 * 32767 / 40000);
    EXPECT_EQ(MakeKneeGains({.wideExtra = -200000}).wideHalfExtra, -32768);
    const KneeGains limited = MakeKneeGains({.narrowBase = 1 << 20, .narrowExtra = 1 << 20, .narrowKnee = 1 << 20});
    EXPECT_EQ(limited.narrow.base, 32767);
    EXPECT_EQ(limited.narrow.extra, 32767);
    EXPECT_EQ(limited.narrow.knee, 16383);
}

TEST(MakeGatedGains, GatesLieAtAShareOfTheKnee) {
    // 100 · 256 / 10 = 2560; 86 of 4096 of it are 53, limited to 15; at a knee of 5 they are 2.
    EXPECT_EQ(MakeGatedRowGains({.narrowExtra = 10, .narrowKnee = 100}).narrowGate, 15);
    EXPECT_EQ(MakeGatedRowGains({.narrowExtra = 10, .narrowKnee = 5}).narrowGate, 2);
    EXPECT_EQ(MakeGatedRowGains({.narrowExtra = 10, .narrowKnee = 20}).wideGate, 11);
    EXPECT_EQ(MakeGatedColumnGains({.narrowExtra = 10, .narrowKnee = 20}).narrowGate, 8);
    EXPECT_EQ(MakeGatedColumnGains({.narrowExtra = 10, .narrowKnee = 100}).wideGate, 15);
    EXPECT_EQ(MakeGatedRowGains({.narrowExtra = 0, .narrowKnee = 20}).narrowGate, 0);
}

}  // namespace
}  // namespace clarivex
