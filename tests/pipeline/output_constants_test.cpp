#include "pipeline/output_constants.h"

#include <gtest/gtest.h>

#include <limits>

namespace clarivex {
namespace {

TEST(MakeOutputConstants, PutsEachParameterInItsPlace) {
    const LightingCorrection params = {.square = -1.0F / 1048576,
                                       .lumaGain = 2.0F,
                                       .lumaOffset = -1.5F,
                                       .cubic = 3.0F / 268435456,
                                       .chromaGainU = 0.5F,
                                       .chromaOffsetU = 4.0F,
                                       .chromaGainV = 0.25F,
                                       .chromaOffsetV = -8.0F};
    const OutputConstants expected = {
        .c3 = 3, .c2 = -1, .c1 = 16384, .c0 = -24, .gU = 4096, .oU = 64, .gV = 2048, .oV = -128};
    EXPECT_EQ(MakeOutputConstants(params), expected);
}

TEST(MakeOutputConstants, RoundsTiesToEven) {
    LightingCorrection params;
    params.lumaOffset = 0.5F / 16;
    params.chromaOffsetU = 1.5F / 16;
    params.chromaOffsetV = -2.5F / 16;
    const OutputConstants constants = MakeOutputConstants(params);
    EXPECT_EQ(constants.c0, 0);
    EXPECT_EQ(constants.oU, 2);
    EXPECT_EQ(constants.oV, -2);
}

TEST(MakeOutputConstants, FoldsOverAndSurvivesNonsense) {
    LightingCorrection params;
    params.lumaGain = 4.0F;       // 32768
    params.lumaOffset = 4097.0F;  // 65552
    params.chromaGainU = std::numeric_limits<float>::infinity();
    params.chromaGainV = std::numeric_limits<float>::quiet_NaN();
    params.chromaOffsetU = -1e30F;
    const OutputConstants constants = MakeOutputConstants(params);
    EXPECT_EQ(constants.c1, -32768);
    EXPECT_EQ(constants.c0, 16);
    EXPECT_EQ(constants.gU, 0);
    EXPECT_EQ(constants.gV, 0);
    EXPECT_EQ(constants.oU, 0);
}

TEST(NeedsWork, OnlyThePackedStageOverlooksInvisibleNoise) {
    const LightingCorrection neutral;
    EXPECT_FALSE(PackedNeedsWork(neutral, MakeOutputConstants(neutral), 0.0F));
    EXPECT_FALSE(PackedNeedsWork(neutral, MakeOutputConstants(neutral), 0.00005F));
    EXPECT_TRUE(PackedNeedsWork(neutral, MakeOutputConstants(neutral), 0.75F));
    EXPECT_FALSE(PlanarNeedsWork(neutral, 0.0F));
    EXPECT_TRUE(PlanarNeedsWork(neutral, 0.00005F));
}

TEST(NeedsWork, OnlyThePackedStageOverlooksParametersThatRoundAway) {
    LightingCorrection nearly;
    nearly.lumaGain = 0.99999994F;
    nearly.lumaOffset = 6.6e-07F;
    EXPECT_FALSE(PackedNeedsWork(nearly, MakeOutputConstants(nearly), 0.0F));
    EXPECT_TRUE(PlanarNeedsWork(nearly, 0.0F));
    nearly.chromaOffsetV = 0.1F;
    EXPECT_TRUE(PackedNeedsWork(nearly, MakeOutputConstants(nearly), 0.0F));
}

}  // namespace
}  // namespace clarivex
