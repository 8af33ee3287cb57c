#include "engine/detail_gains.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/sharpen_curve.h"

namespace clarivex {
namespace {

constexpr ScaleModes bothAxes{1, 1};

double KneeOf(float level, ScaleModes modes = bothAxes, bool bypass = false) {
    EngineSettings settings;
    settings.noiseReduction = level;
    StageSettings stages;
    return SetUpNoiseReduction(settings, modes, bypass, stages).knee;
}

TEST(SetUpNoiseReduction, MixesTheLevelsWithTheLowerOneInFull) {
    EXPECT_NEAR(KneeOf(1.5F), 1.081, 1e-6);
    EXPECT_NEAR(KneeOf(2.5F), 2.209, 1e-6);
    EXPECT_NEAR(KneeOf(6.0F), 17.670872, 1e-6);
    EXPECT_EQ(KneeOf(std::numeric_limits<float>::infinity()), KneeOf(6.0F));
    EXPECT_EQ(KneeOf(3.0F, {2, 2}), 0) << "doubled";
    EXPECT_EQ(KneeOf(3.0F, {0, 0}, true), 0) << "too large";
    EXPECT_GT(KneeOf(3.0F, {2, 1}), 0);
}

void ExpectRecord(const SharpenParams& actual, const SharpenParams& expected, const std::string& what) {
    EXPECT_FLOAT_EQ(actual.baseGainLog2, expected.baseGainLog2) << what;
    EXPECT_FLOAT_EQ(actual.extraGainLog2, expected.extraGainLog2) << what;
    EXPECT_FLOAT_EQ(actual.knee, expected.knee) << what;
}

TEST(SetUpNoiseReduction, SmoothsChromaFromTheLevelOfTwoAndAHalf) {
    EngineSettings settings;
    settings.noiseStagesH = 1;
    StageSettings stages;
    settings.noiseReduction = 2.49F;
    EXPECT_FALSE(SetUpNoiseReduction(settings, bothAxes, false, stages).smoothsChroma);
    settings.noiseReduction = 2.5F;
    const NoiseReduction reduction = SetUpNoiseReduction(settings, bothAxes, false, stages);
    EXPECT_TRUE(reduction.smoothsChroma);
    ExpectRecord(reduction.smoothing, Curve(-500, 500, 2.209F * 0.63F), "chroma");
}

/// Settings that drive the gains behind the scaler, and what comes of them: base gain, extra gain and knee of the narrow
/// record of rows and of columns and of the wide record.
struct GainCase {
    const char* name;
    ScaleModes modes;
    float strength;  // at any size
    double noiseKnee;
    void (*set)(EngineSettings&);
    float noise;
    SharpenParams rows, columns, wide;
};

void Nothing(EngineSettings&) {}
void CurveOn(EngineSettings& settings) { settings.curveSharpening = 1; }

// clang-format off
const GainCase gainCases[] = {
    {"start-up values, scaled", {1, 1}, 1.5, 0, Nothing,
     0, Curve(0, 0, 0), Curve(0, 0, 0), Curve(6.3F, -6.3F, 15)},
    {"curve, scaled, strong, coring", {1, 1}, 6.0, 4.0,
     [](EngineSettings& s) {
         CurveOn(s);
         s.coringLevel = s.fusedNarrowGain = 3;
         s.fusedWideGain = 5;
         s.verticalDetailGain = 4;
         s.ditherGain = 0.5F;
     },
     1.69230771F, Curve(0, 2.4F, 2.356F), Curve(0, 1.8F, 2.356F), Curve(6.95739841F, -6.3F, 15)},
    {"curve, unscaled", {0, 0}, 3.75, 9.0, [](EngineSettings& s) { CurveOn(s); s.coringLevel = 1; },
     0, Curve(0, 1.67F, 3), Curve(0, 2.825F, 3), Curve(0.0701328143F, 0, 0)},
    {"below the level tables, unscaled", {0, 0}, 8.5, 0,
     [](EngineSettings& s) { s.sharpenScheme = 1; s.ditherGain = 1; },
     4.41025639F, Curve(2.625F, 0, 0), Curve(1.4F, 0, 0), Curve(0.950217783F, 0, 0)},
    {"twofold", {2, 1}, 2.0, 0, [](EngineSettings& s) { CurveOn(s); s.twofoldWideGain = 4; },
     0, Curve(2.38415956F, 0, 0), Curve(1.24555552F, 0, 0), Curve(1.8F, -1.85F, 3)},
};
// clang-format on

TEST(SetUpDetailGains, FollowsStrengthModesAndSettings) {
    for (const GainCase& test : gainCases) {
        EngineSettings settings;
        test.set(settings);
        StageSettings stages;  // as the pass leaves them: the base gain is in
        stages.postNarrowH.baseGainLog2 = stages.postNarrowV.baseGainLog2 =
            static_cast<float>(settings.baseDetailGain * 0.3);
        const DetailInputs inputs{test.modes, StrengthOf(-test.strength, 1, 1), test.noiseKnee, 100, 80, 1.0F, false};
        EXPECT_FLOAT_EQ(SetUpDetailGains(settings, inputs, stages), test.noise) << test.name;
        ExpectRecord(stages.postNarrowH, test.rows, std::string(test.name) + ", rows");
        ExpectRecord(stages.postNarrowV, test.columns, std::string(test.name) + ", columns");
        ExpectRecord(stages.postWide, test.wide, std::string(test.name) + ", wide");
    }
}

}  // namespace
}  // namespace clarivex
