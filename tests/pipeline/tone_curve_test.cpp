// The curve that lighting and picture adjustments ask for, and the constants that the output stages make of it.
#include "pipeline/tone_curve.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "pipeline/output_constants.h"

namespace clarivex {
namespace {

/// What frames have with lighting on, and without.
constexpr ToneSettings lit = {.colourBiasB = 42, .colourBiasC = 47};
constexpr ToneSettings unlit = {.toneBlackSlope = 0, .toneWhiteSlope = 0};

LightingCorrection Linear(float gain, float offset, float chromaGain, float chromaOffset) {
    LightingCorrection correction;
    correction.lumaGain = gain;
    correction.lumaOffset = offset;
    correction.chromaGainU = correction.chromaGainV = chromaGain;
    correction.chromaOffsetU = correction.chromaOffsetV = chromaOffset;
    return correction;
}

LightingCorrection After(const ToneSettings& settings, LightingCorrection correction) {
    ToneCurve(settings, true, correction);
    return correction;
}

TEST(ToneCurve, MeasuredCorrectionsGiveTheKnownConstants) {
    const struct {
        LightingCorrection correction;
        OutputConstants expected;
    } cases[] = {
        {Linear(1.0352675F, -7.8525643F, 1.0360556F, -4.6151152F), {2175, -2335, 9133, -138, 8206, -3, 8206, -3}},
        {Linear(1.1816591F, -9.9393864F, 1.1547596F, -19.809231F), {3235, -3109, 10510, -174, 9146, -238, 9146, -238}},
        {Linear(1.0479807F, -10.761669F, 1.0363439F, -4.652019F), {2256, -2466, 9351, -188, 8208, -4, 8208, -4}},
    };
    for (const auto& test : cases) EXPECT_EQ(MakeOutputConstants(After(lit, test.correction)), test.expected);
    EXPECT_EQ(MakeOutputConstants(After(unlit, {})), OutputConstants{});
    for (const auto& [enabled, suspended, lighting] :
         {std::tuple(false, false, true), {true, true, true}, {true, false, false}}) {
        ToneSettings settings = lighting ? lit : ToneSettings{};
        settings.toneEnabled = enabled;
        settings.toneSuspended = suspended;
        LightingCorrection correction;
        ToneCurve(settings, lighting, correction);
        EXPECT_EQ(MakeOutputConstants(correction), OutputConstants{}) << "off, suspended, without lighting";
    }
}

TEST(ToneCurve, KeepsIncomingCurvesOnlyWhileItsOwnIsStraight) {
    LightingCorrection curved;
    curved.cubic = 0.00001F;
    curved.square = -0.002F;
    const LightingCorrection straight = After(unlit, curved);
    EXPECT_NEAR(straight.cubic, curved.cubic, 1e-11);
    EXPECT_NEAR(straight.square, curved.square, 1e-9);
    EXPECT_EQ(After(lit, curved).cubic, After(lit, {}).cubic);
}

LightingCorrection WithBiases(int32_t a, int32_t b, int32_t c) {
    ToneSettings settings = unlit;
    settings.colourBiasA = a;
    settings.colourBiasB = b;
    settings.colourBiasC = c;
    return After(settings, {});
}

double SlopeAt(const LightingCorrection& params, double y) {
    return (3 * params.cubic * y + 2 * params.square) * y + params.lumaGain;
}

TEST(ToneCurve, BiasesBendEachSideByItsOwnSlope) {
    EXPECT_NEAR(SlopeAt(WithBiases(60, 50, 50), 235), 1 - 0.28, 1e-5);
    EXPECT_NEAR(SlopeAt(WithBiases(40, 50, 50), 235), (1 + 0.032) * 0.9, 1e-5);
    // B of 100 counts as 68, which leaves 82 hundredths of the range; B of 0 as 17.
    EXPECT_NEAR(SlopeAt(WithBiases(50, 100, 50), 16), (1 + 0.072) * 0.82, 1e-5);
    EXPECT_NEAR(SlopeAt(WithBiases(50, 0, 50), 16), 1 - 0.924, 1e-5);
}

TEST(MakeOutputConstants, RoundsTiesToEvenFoldsOverAndSurvivesNonsense) {
    LightingCorrection params;
    params.lumaGain = 4.0F;       // 32768
    params.lumaOffset = 4097.0F;  // 65552
    params.chromaOffsetU = 1.5F / 16;
    params.chromaOffsetV = -2.5F / 16;
    params.chromaGainU = std::numeric_limits<float>::infinity();
    params.chromaGainV = std::numeric_limits<float>::quiet_NaN();
    const OutputConstants expected = {.c3 = 0, .c2 = 0, .c1 = -32768, .c0 = 16, .gU = 0, .oU = 2, .gV = 0, .oV = -2};
    EXPECT_EQ(MakeOutputConstants(params), expected);
    params.chromaOffsetU = -1e30F;
    EXPECT_EQ(MakeOutputConstants(params).oU, 0);
}

TEST(NeedsWork, OnlyThePackedStageOverlooksWhatRoundsAway) {
    LightingCorrection nearly;
    nearly.lumaGain = 0.99999994F;
    nearly.lumaOffset = 6.6e-07F;
    EXPECT_FALSE(PackedNeedsWork(nearly, 0.0F));
    EXPECT_TRUE(PlanarNeedsWork(nearly, 0.0F));
    EXPECT_FALSE(PackedNeedsWork({}, 0.00005F));
    EXPECT_TRUE(PackedNeedsWork({}, 0.0002F));
    nearly.chromaOffsetV = 0.1F;
    EXPECT_TRUE(PackedNeedsWork(nearly, 0.0F));
}

}  // namespace
}  // namespace clarivex
