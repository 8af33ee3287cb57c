#include "algorithms/filter_design.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr double combUnit = 0.02F;

PrototypeDesign CombedDesign(double weightA, double weightB, double cutoff) {
    PrototypeDesign design;
    design.combWeightA = weightA * combUnit;
    design.combWeightB = weightB * combUnit;
    design.cutoff = cutoff;
    return design;
}

PrototypeKernel KernelOf(const PrototypeDesign& design) {
    PrototypeKernel kernel;
    DesignPrototype(kernel, design);
    return kernel;
}

ThreeHalvesTaps TapsOf(const PrototypeDesign& design) { return DesignThreeHalvesTaps(KernelOf(design)); }

int32_t SumOf(const TapSet& taps) { return std::accumulate(taps.begin(), taps.end(), 0); }

TapSet Reversed(TapSet taps) {
    std::reverse(taps.begin(), taps.end());
    return taps;
}

TwofoldTaps TwofoldTapsOf(const PrototypeDesign& design) {
    PrototypeKernel kernel = KernelOf(design);
    NormalisePrototype(kernel);
    return DesignTwofoldTaps(kernel);
}

// The second scaler pass at a strength of 1.3641479, then designs in which the constants of the centring and of the
// quantisation each decide about a tap; for two, tuning sets 0 and 1 and two more.
TEST(DesignTaps, GivesThePinnedTapsAndTheirMirrors) {
    const struct {
        PrototypeDesign design;
        TapSet a, b;
    } threeHalves[] = {{CombedDesign(37 + 17 * 0.3641479, -10 - 2 * 0.3641479, 0.81),
                        {-1, 263, -2558, 2760, 19772, -3462, -533, 79},
                        {6, 289, -4513, 12378, 12378, -4513, 289, 6}},
                       {CombedDesign(9, -2, 0.81),
                        {-1, 108, -1283, 3878, 14408, -456, -370, 36},
                        {3, 76, -1844, 9925, 9925, -1844, 76, 3}},
                       {CombedDesign(45, -2, 0.75),
                        {-1, 115, -2640, 4044, 17474, -1664, -1073, 65},
                        {12, -123, -3533, 11804, 11804, -3533, -123, 12}}};
    for (const auto& test : threeHalves) {
        const ThreeHalvesTaps taps = TapsOf(test.design);
        EXPECT_EQ(taps.a, test.a);
        EXPECT_EQ(taps.b, test.b);
        EXPECT_EQ(taps.c, Reversed(test.a));
    }
    EXPECT_EQ(TapsOf(CombedDesign(43, -7, 0.6)).a, (TapSet{1, -99, -1177, 5145, 11796, 1529, -874, -1}));
    const std::pair<PrototypeDesign, TapSet> twofold[] = {
        {CombedDesign(19, -13, 0.75), {-1, 167, -1087, 5364, 12339, -346, -91, 39}},
        {CombedDesign(19, -20, 0.75), {-2, 286, -96, 4855, 10428, 451, 416, 46}},
        {CombedDesign(45, -2, 0.75), {-1, 99, -3018, 5954, 16567, -2502, -762, 47}},
        {CombedDesign(60, -20, 0.81), {-3, 457, -3819, 4677, 20857, -5809, -43, 67}},
    };
    for (const auto& [design, taps] : twofold) {
        EXPECT_EQ(TwofoldTapsOf(design).a, taps);
        EXPECT_EQ(TwofoldTapsOf(design).b, Reversed(taps));
        EXPECT_EQ(SumOf(taps), 16384);
    }
}

TEST(DesignThreeHalvesTaps, SumsAreExactAndMomentsWithinOneUnit) {
    for (const WindowKind window : {WindowKind::kaiser, WindowKind::sinc, WindowKind::none})
        for (int32_t weight = -20; weight <= 110; weight += 7)
            for (const double cutoff : {0.75, 0.81}) {
                PrototypeDesign design = CombedDesign(weight, -weight / 3, cutoff);
                design.window = window;
                const ThreeHalvesTaps taps = TapsOf(design);
                for (const TapSet* phase : {&taps.a, &taps.b, &taps.c})
                    EXPECT_EQ(SumOf(*phase), 16320) << weight << ' ' << cutoff;
                EXPECT_LE(std::abs(taps.b[3] - taps.b[4]), 1);
            }
}

TEST(DesignPrototype, OtherWindowsStartAtTwoOverPiOrNotAtAll) {
    for (const auto& [window, first] :
         {std::pair{WindowKind::sinc, 1.5 / std::numbers::pi}, {WindowKind::none, 0.75}}) {
        const PrototypeKernel kernel = KernelOf({.window = window});
        EXPECT_FLOAT_EQ(kernel[0], static_cast<float>(first));
        EXPECT_EQ(kernel[241] == 0.0F, window == WindowKind::sinc);
    }
}

}  // namespace
}  // namespace clarivex
