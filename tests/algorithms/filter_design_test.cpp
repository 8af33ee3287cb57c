#include "algorithms/filter_design.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

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

ThreeHalvesTaps TapsOf(const PrototypeDesign& design) {
    PrototypeKernel kernel;
    DesignPrototype(kernel, design);
    return DesignThreeHalvesTaps(kernel);
}

int32_t SumOf(const TapSet& taps) { return std::accumulate(taps.begin(), taps.end(), 0); }

double MomentOf(const TapSet& taps) {
    double moment = 0.0;
    for (int32_t k = 0; k < 8; ++k) moment += (k - 4) * taps[static_cast<size_t>(k)];
    return moment;
}

TapSet Reversed(TapSet taps) {
    std::reverse(taps.begin(), taps.end());
    return taps;
}

TEST(DesignThreeHalvesTaps, GivesTheTapsOfTheFirstScalerPass) {
    PrototypeKernel kernel;
    DesignPrototype(kernel, CombedDesign(19, -13, 0.75));
    NormalisePrototype(kernel);
    const ThreeHalvesTaps taps = DesignThreeHalvesTaps(kernel);
    EXPECT_EQ(taps.a, (TapSet{-1, 149, -925, 4093, 12929, 241, -223, 57}));
    EXPECT_EQ(taps.b, (TapSet{8, 142, -1202, 9212, 9212, -1202, 142, 8}));
    EXPECT_EQ(taps.c, Reversed(taps.a));
}

TEST(DesignThreeHalvesTaps, GivesTheTapsOfTheSecondScalerPassAtThreeStrengths) {
    // The comb weights of strength 0.316439152, 0.795536458 and 1.3641479.
    const ThreeHalvesTaps soft = TapsOf(CombedDesign(23 + 14 * 0.316439152, -8 - 2 * 0.316439152, 0.81));
    EXPECT_EQ(soft.a, (TapSet{-1, 210, -1914, 3182, 17322, -2155, -387, 63}));
    EXPECT_EQ(soft.b, (TapSet{5, 238, -3290, 11207, 11207, -3290, 238, 5}));
    EXPECT_EQ(soft.c, Reversed(soft.a));
    const ThreeHalvesTaps medium = TapsOf(CombedDesign(23 + 14 * 0.795536458, -8 - 2 * 0.795536458, 0.81));
    EXPECT_EQ(medium.a, (TapSet{-1, 234, -2202, 2988, 18428, -2746, -451, 70}));
    EXPECT_EQ(medium.b, (TapSet{5, 263, -3841, 11733, 11733, -3841, 263, 5}));
    const ThreeHalvesTaps crisp = TapsOf(CombedDesign(37 + 17 * 0.3641479, -10 - 2 * 0.3641479, 0.81));
    EXPECT_EQ(crisp.a, (TapSet{-1, 263, -2558, 2760, 19772, -3462, -533, 79}));
    EXPECT_EQ(crisp.b, (TapSet{6, 289, -4513, 12378, 12378, -4513, 289, 6}));
}

// Designs in which the constants of the centring and of the quantisation each decide about a tap.
TEST(DesignThreeHalvesTaps, QuantisesAsDesigned) {
    const ThreeHalvesTaps weak = TapsOf(CombedDesign(9, -2, 0.81));
    EXPECT_EQ(weak.a, (TapSet{-1, 108, -1283, 3878, 14408, -456, -370, 36}));
    EXPECT_EQ(weak.b, (TapSet{3, 76, -1844, 9925, 9925, -1844, 76, 3}));
    const ThreeHalvesTaps strong = TapsOf(CombedDesign(45, -2, 0.75));
    EXPECT_EQ(strong.a, (TapSet{-1, 115, -2640, 4044, 17474, -1664, -1073, 65}));
    EXPECT_EQ(strong.b, (TapSet{12, -123, -3533, 11804, 11804, -3533, -123, 12}));
    const ThreeHalvesTaps blurred = TapsOf(CombedDesign(43, -7, 0.6));
    EXPECT_EQ(blurred.a, (TapSet{1, -99, -1177, 5145, 11796, 1529, -874, -1}));
    EXPECT_EQ(blurred.c, Reversed(blurred.a));
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
                EXPECT_NEAR(MomentOf(taps.a), -16320.0 / 6.0, 1.0) << weight << ' ' << cutoff;
                EXPECT_NEAR(MomentOf(taps.b), -16320.0 / 2.0, 1.0) << weight << ' ' << cutoff;
                EXPECT_NEAR(MomentOf(taps.c), -16320.0 * 5.0 / 6.0, 1.0) << weight << ' ' << cutoff;
                EXPECT_LE(std::abs(taps.b[3] - taps.b[4]), 1);
                for (size_t k = 0; k < 3; ++k) EXPECT_EQ(taps.b[k], taps.b[7 - k]);
            }
}

TEST(DesignPrototype, WithoutCombIsAWindowedSinc) {
    PrototypeDesign design;
    design.cutoff = 1.0;
    design.gain = 0.5;
    for (const double beta : {2.0, 9.8}) {
        design.beta = beta;
        PrototypeKernel kernel;
        DesignPrototype(kernel, design);
        EXPECT_FLOAT_EQ(kernel[0], 0.5F);
        for (int32_t i = 1; i < 256; ++i) {
            const double x = i / 64.0;
            const double inside = 1.0 - x * x / (3.75 * 3.75);
            const double window =
                inside < 0.0 ? 0.0 : std::cyl_bessel_i(0.0, beta * std::sqrt(inside)) / std::cyl_bessel_i(0.0, beta);
            const double sinc = std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
            EXPECT_NEAR(kernel[static_cast<size_t>(i)], 0.5 * sinc * window, 1e-7) << i;
        }
    }
}

TEST(DesignPrototype, OtherWindowsStartAtTwoOverPiOrNotAtAll) {
    PrototypeDesign design;
    PrototypeKernel kernel;
    design.window = WindowKind::sinc;
    DesignPrototype(kernel, design);
    EXPECT_FLOAT_EQ(kernel[0], static_cast<float>(0.75 * 2.0 / std::numbers::pi));
    EXPECT_NEAR(kernel[240], 0.0, 1e-9);
    EXPECT_EQ(kernel[241], 0.0F);
    design.window = WindowKind::none;
    DesignPrototype(kernel, design);
    EXPECT_EQ(kernel[0], 0.75F);
    EXPECT_NE(kernel[241], 0.0F);
}

TEST(DesignPrototype, CombPairsWeighTheirDistanceFromTheCentre) {
    // With the comb on distance 1 and the full band, the centre is 1 − weight · (0 + 0 − 2).
    PrototypeDesign design = CombedDesign(10, 0, 1.0);
    PrototypeKernel kernel;
    DesignPrototype(kernel, design);
    EXPECT_NEAR(kernel[0], 1.4, 1e-6);
    design.combOffsetA = 0.0;
    DesignPrototype(kernel, design);
    EXPECT_FLOAT_EQ(kernel[0], 1.0F);
}

TEST(NormalisePrototype, MakesTheIntegralOne) {
    PrototypeKernel kernel;
    DesignPrototype(kernel, CombedDesign(19, -13, 0.6));
    NormalisePrototype(kernel);
    const double integral = kernel[0] + 2.0 * std::accumulate(kernel.begin() + 1, kernel.end(), 0.0);
    EXPECT_NEAR(integral / 64.0, 1.0, 1e-6);
}

TEST(TruncateSpectrum, KeepsTheFirstEntries) {
    PrototypeKernel kernel;
    kernel.fill(1.0F);
    TruncateSpectrum(kernel, 256);
    EXPECT_EQ(kernel[255], 1.0F);
    TruncateSpectrum(kernel, 5);
    EXPECT_EQ(kernel[4], 1.0F);
    EXPECT_EQ(std::count(kernel.begin() + 5, kernel.end(), 0.0F), 251);
    TruncateSpectrum(kernel, 0);
    EXPECT_EQ(kernel[0], 0.0F);
}

}  // namespace
}  // namespace clarivex
