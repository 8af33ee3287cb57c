#include "engine/strength.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace clarivex {
namespace {

struct ModeCase {
    ScaleModes wanted;
    int32_t width, height;
    ScaleModes given;
};

TEST(LimitModes, GivesUpOneAxisThenBothAndPairsThatNoScalerHas) {
    for (const ModeCase& test : {ModeCase{{1, 1}, 2047, 1021, {1, 1}},
                                 {{1, 1}, 600, 1022, {1, 0}},
                                 {{1, 1}, 2047, 1535, {1, 0}},
                                 {{1, 1}, 600, 1536, {0, 0}},
                                 {{1, 1}, 2048, 100, {0, 0}},
                                 {{1, 0}, 2047, 1535, {1, 0}},
                                 {{0, 1}, 4096, 4096, {0, 1}},
                                 {{2, 2}, 1023, 767, {2, 2}},
                                 {{2, 2}, 1024, 100, {0, 0}},
                                 {{2, 2}, 100, 768, {0, 0}},
                                 {{2, 1}, 1361, 1021, {2, 1}},
                                 {{2, 1}, 1362, 1021, {1, 1}},
                                 {{2, 1}, 1361, 1022, {1, 0}},
                                 {{2, 1}, 2048, 1022, {0, 0}},
                                 {{1, 2}, 100, 100, {0, 0}},
                                 {{2, 0}, 100, 100, {0, 0}},
                                 {{3, 1}, 100, 100, {0, 0}},
                                 {{1, -1}, 100, 100, {0, 0}}}) {
        const ScaleModes modes = LimitModes(test.wanted, test.width, test.height);
        EXPECT_EQ(std::pair(modes.horizontal, modes.vertical), std::pair(test.given.horizontal, test.given.vertical))
            << test.wanted.horizontal << ", " << test.wanted.vertical << ", " << test.width << " x " << test.height;
    }
}

TEST(StrengthOf, IsReducedForSmallPicturesOnly) {
    EXPECT_NEAR(StrengthOf(1, 160, 120).value, 0.3193, 0.0001);
    EXPECT_LT(StrengthOf(1, 320, 249).value, 1);
    EXPECT_EQ(StrengthOf(1, 400, 209).value, 1);
    EXPECT_EQ(StrengthOf(-3, 32, 8).value, 3) << "negative stands for its absolute value at any size";
}

TEST(StrengthOf, StaysWithinItsTables) {
    const Strength strongest = StrengthOf(50, 1000, 1000);
    EXPECT_EQ(strongest.level, 8);
    EXPECT_NEAR(strongest.fraction, 0.9999, 1e-12);
    EXPECT_EQ(StrengthOf(-std::numeric_limits<float>::infinity(), 9, 9).level, 8);
    EXPECT_EQ(StrengthOf(std::numeric_limits<float>::quiet_NaN(), 9, 9).value, 0);
    EXPECT_EQ(MixRows(tapRows15, strongest, 1), 0);
    EXPECT_DOUBLE_EQ(MixRows(tapRows15, StrengthOf(-1.25F, 9, 9), 1), -29);
}

}  // namespace
}  // namespace clarivex
