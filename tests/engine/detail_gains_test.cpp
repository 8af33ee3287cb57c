#include "engine/detail_gains.h"

#include <gtest/gtest.h>

#include <limits>

#include "engine/sleeping/noise_reduction.h"
#include "tests/support/sharpen_curve.h"

namespace clarivex {
namespace {

constexpr AxisScale kept = AxisScale::none;
constexpr AxisScale threeHalves = AxisScale::threeHalves;
constexpr AxisScale twofold = AxisScale::twofold;

double KneeOf(float level, ScaleModes modes = {threeHalves, threeHalves}) {
    NoiseReductionSettings settings;
    settings.noiseReduction = level;
    return PlanNoiseReduction(settings, modes).knee;
}

TEST(PlanNoiseReduction, MixesTheLevelsWithTheLowerOneInFull) {
    EXPECT_NEAR(KneeOf(1.5F), 1.081, 1e-6);
    EXPECT_NEAR(KneeOf(2.5F), 2.209, 1e-6);
    EXPECT_NEAR(KneeOf(6.0F), 17.670872, 1e-6);
    EXPECT_EQ(KneeOf(std::numeric_limits<float>::infinity()), KneeOf(6.0F));
    EXPECT_EQ(KneeOf(3.0F, {twofold, twofold}), 0) << "doubled";
    EXPECT_GT(KneeOf(3.0F, {twofold, threeHalves}), 0);
}

void ExpectRecord(const SharpenParams& actual, const SharpenParams& expected, const std::string& what) {
    EXPECT_FLOAT_EQ(actual.baseGainLog2, expected.baseGainLog2) << what;
    EXPECT_FLOAT_EQ(actual.extraGainLog2, expected.extraGainLog2) << what;
    EXPECT_FLOAT_EQ(actual.knee, expected.knee) << what;
}

TEST(PlanNoiseReduction, SmoothsChromaLessThanRowsAndOpensGatesWide) {
    NoiseReductionSettings settings;
    settings.noiseReduction = 2.5F;
    settings.noiseStagesH = 1;
    settings.noiseStagesV = 3;
    const NoiseReduction reduction = PlanNoiseReduction(settings, {threeHalves, threeHalves});
    ExpectRecord(reduction.chroma, Curve(-500, 500, 2.209F * 0.63F), "chroma");
    ExpectRecord(reduction.rows.narrow, Curve(-500, 500, 2.209F), "rows");
    ExpectRecord(reduction.columns.narrow, Curve(-496.2F, 500, 2.209F * 1.01F), "columns, narrow");
    ExpectRecord(reduction.columns.wide, Curve(-496.9F, 500, 2.6508F * 1.01F), "columns, wide");
}

/// Settings that drive the gains behind the scaler, and what comes of them: base gain, extra gain and knee of the narrow
/// record of rows and of columns and of the wide record.
struct GainCase {
    const char* name;
    ScaleModes modes;
    float strength;  // at any size
    double noiseKnee;
    void (*set)(DetailSettings&);
    float dither, noise;
    SharpenParams rows, columns, wide;
};

void Nothing(DetailSettings&) {}
void CurveOn(DetailSettings& settings) { settings.curveSharpening = true; }

// clang-format off
const GainCase gainCases[] = {
    {"start-up values, scaled", {threeHalves, threeHalves}, 1.5, 0, Nothing,
     0, 0, Curve(0, 0, 0), Curve(0, 0, 0), Curve(6.3F, -6.3F, 15)},
    {"curve, scaled, strong, coring", {threeHalves, threeHalves}, 6.0, 4.0,
     [](DetailSettings& s) {
         CurveOn(s);
         s.coringLevel = s.fusedNarrowGain = 3;
         s.fusedWideGain = 5;
         s.verticalDetailGain = 4;
     },
     0.5F, 1.69230771F, Curve(0, 2.4F, 2.356F), Curve(0, 1.8F, 2.356F), Curve(6.95739841F, -6.3F, 15)},
    {"curve, unscaled", {kept, kept}, 3.75, 9.0, [](DetailSettings& s) { CurveOn(s); s.coringLevel = 1; },
     0, 0, Curve(0, 1.67F, 3), Curve(0, 2.825F, 3), Curve(0.0701328143F, 0, 0)},
    {"below the level tables, unscaled", {kept, kept}, 8.5, 0,
     [](DetailSettings& s) { s.sharpenScheme = SharpenScheme::detailGains; },
     1, 4.41025639F, Curve(2.625F, 0, 0), Curve(1.4F, 0, 0), Curve(0.950217783F, 0, 0)},
    {"twofold", {twofold, threeHalves}, 2.0, 0, [](DetailSettings& s) { CurveOn(s); s.twofoldWideGain = 4; },
     0, 0, Curve(2.38415956F, 0, 0), Curve(1.24555552F, 0, 0), Curve(1.8F, -1.85F, 3)},
};
// clang-format on

TEST(PlanDetailGains, FollowsStrengthModesAndSettings) {
    for (const GainCase& test : gainCases) {
        DetailSettings settings;
        test.set(settings);
        const DetailGains gains = PlanDetailGains(settings, {.modes = test.modes,
                                                             .strength = StrengthOf(-test.strength, {1, 1}),
                                                             .noiseKnee = test.noiseKnee,
                                                             .size = {100, 80},
                                                             .ditherGain = test.dither});
        EXPECT_FLOAT_EQ(gains.outputNoise, test.noise) << test.name;
        ExpectRecord(gains.postNarrowH, test.rows, std::string(test.name) + ", rows");
        ExpectRecord(gains.postNarrowV, test.columns, std::string(test.name) + ", columns");
        ExpectRecord(gains.postWide, test.wide, std::string(test.name) + ", wide");
    }
}

}  // namespace
}  // namespace clarivex
