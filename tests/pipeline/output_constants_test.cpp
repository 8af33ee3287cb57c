#include "pipeline/output_constants.h"

#include <gtest/gtest.h>

#include <limits>

namespace clarivex {
namespace {

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
    const LightingCorrection neutral;
    EXPECT_FALSE(PackedNeedsWork(neutral, MakeOutputConstants(neutral), 0.00005F));
    EXPECT_TRUE(PackedNeedsWork(neutral, MakeOutputConstants(neutral), 0.75F));
    EXPECT_FALSE(PlanarNeedsWork(neutral, 0.0F));
    EXPECT_TRUE(PlanarNeedsWork(neutral, 0.00005F));
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
