#include "algorithms/detail_kernels.h"

#include <gtest/gtest.h>

#include <array>

namespace clarivex {
namespace {

constexpr uint8_t noDither[gateGroup] = {0, 0, 0, 0};

using Group = std::array<uint8_t, gateGroup>;
using Measures = std::array<int16_t, gateGroup>;

Group Gated(const Group& samples, const Measures& narrow, const Measures& wide, const GatedGains& gains) {
    Group out;
    GatedDetail(samples.data(), narrow.data(), wide.data(), gains, noDither, out.data());
    return out;
}

TEST(Core, IsADeadZoneThatWrapsAtTheTop) {
    EXPECT_EQ(Core(10, 4), 6);
    EXPECT_EQ(Core(-10, 4), -6);
    for (const int16_t inside : std::array<int16_t, 3>{-4, 0, 4}) EXPECT_EQ(Core(inside, 4), 0);
    EXPECT_EQ(Core(-32768, 16383), -16385);
    EXPECT_EQ(Core(32767, 1), -32768) << "the raised value leaves 16 bits";
    EXPECT_EQ(WideCore(-1'000'000'000'000, 1), -999'999'999'999);
}

TEST(Measures, AreSecondDifferences) {
    EXPECT_EQ(NarrowMeasure(0, 255, 0), 510);
    EXPECT_EQ(WideMeasure(10, 20, 30, 40, 50, 60, 70), 0);
    EXPECT_EQ(WideMeasure(1, 2, 4, 8, 16, 32, 64), 32 + 20 - 68 - 65);
}

TEST(NarrowDetail, SmoothsRipplesKeepsEdgesAndLimitsToSamples) {
    const NarrowGains smoothing = MakeNarrowGains({.narrowBase = -5, .narrowExtra = 5, .narrowKnee = 10});
    EXPECT_EQ(NarrowDetail(100, 2, smoothing, 12), 100);  // (−10 + 12) >> 4
    EXPECT_EQ(NarrowDetail(100, 40, smoothing, 4), 99);   // core(200) − 200 + 4 = −6: only the knee's size
    EXPECT_EQ(NarrowDetail(250, 100, MakeNarrowGains({.narrowBase = 5}), 0), 255);
    EXPECT_EQ(NarrowDetail(100, 200, MakeNarrowGains({.narrowBase = 200}), 0), 0) << "40000 is −25536 in 16 bits";
}

TEST(KneeDetail, TheExtraWideGainComesInTwoSteps) {
    // Half the extra gain is 16384, so a measure of 64 gives hi(1024 · 16384) = 256; the knee lies at 100.
    const KneeGains gains = MakeKneeGains({.wideExtra = 32768, .wideKnee = 100 << 13});
    EXPECT_EQ(KneeDetail(100, 0, 20, gains, 0), 100);              // 80: below the knee
    EXPECT_EQ(KneeDetail(100, 0, 40, gains, 0), 100 + (60 >> 4));  // 160: above it
    EXPECT_EQ(KneeDetail(100, 0, 64, gains, 0), 100 + ((156 + 56) >> 4));
    const KneeGains both = MakeKneeGains({.narrowBase = 5, .narrowExtra = 10, .narrowKnee = 40, .wideBase = 8192});
    EXPECT_EQ(KneeDetail(50, 8, 32, both, 12), 50 + ((64 + 40 + 40 + 12) >> 4));
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

TEST(GatedDetail, OneSampleAboveAGateOpensItForItsGroup) {
    GatedGains gains;
    gains.narrow = {0, 8, 0};
    gains.narrowGate = 10;
    EXPECT_EQ(Gated({50, 60, 70, 80}, {2, 4, 10, -11}, {}, gains), (Group{50, 60, 70, 80}));
    EXPECT_EQ(Gated({50, 60, 70, 80}, {2, 4, 11, 8}, {}, gains), (Group{51, 62, 75, 84}));
    EXPECT_EQ(Gated({50, 60, 70, 80}, {2, 4, 6, -12}, {}, gains), (Group{51, 62, 73, 80}))
        << "a base detail of 0 counts as positive, so that negative detail would turn it round";
    gains.narrow = {8, 8, 0};
    EXPECT_EQ(Gated({50, 60, 70, 80}, {2, 4, 6, -12}, {}, gains), (Group{52, 64, 76, 68}));
    EXPECT_EQ(Gated({50, 60, 70, 80}, {2, 4, 6, -8}, {}, gains), (Group{51, 62, 73, 76}))
        << "the base gain has no gate";
    gains = {.narrow = {}, .wideExtra = 16384, .wideKnee = 32, .wideGate = 10};  // hi(16 · W · 16384) << 2 = 16 · W
    EXPECT_EQ(Gated({50, 50, 50, 50}, {99, 99, 99, 99}, {10, -11, 0, 5}, gains), (Group{50, 50, 50, 50}));
    EXPECT_EQ(Gated({50, 50, 50, 50}, {}, {11, 12, 0, 1}, gains), (Group{59, 60, 50, 50}));
}

TEST(GatedDetail, ADetailThatItsKneeWouldReverseBecomesZero) {
    GatedGains gains;
    gains.narrow = {-5, 9, 0};
    EXPECT_EQ(Gated({50, 50, 50, 50}, {16, 0, 0, 0}, {}, gains), (Group{50, 50, 50, 50})) << "−80 + 144 turns round";
    gains.narrow.knee = 80;
    EXPECT_EQ(Gated({50, 50, 50, 50}, {16, 0, 0, 0}, {}, gains), (Group{49, 50, 50, 50})) << "−80 + 64 does not";
    gains = {.narrow = {}, .wideBase = -4096, .wideExtra = 8192, .wideKnee = 80};  // −4 · W and 8 · W
    EXPECT_EQ(Gated({50, 50, 50, 50}, {}, {16, 0, 0, 0}, gains), (Group{49, 50, 50, 50}));
}

}  // namespace
}  // namespace clarivex
