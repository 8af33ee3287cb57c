#include "algorithms/sharpen_params.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "algorithms/rounding.h"
#include "tests/support/sharpen_curve.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(RoundToNearest, TakesTiesToEvenAndStaysNegatable) {
    for (const auto& [value, rounded] : {std::pair{0.5, 0},
                                         {1.5, 2},
                                         {-2.5, -2},
                                         {-3.4999, -3},
                                         {1e300, INT32_MAX},
                                         {-1e300, -INT32_MAX},
                                         {std::nan(""), 0}})
        EXPECT_EQ(RoundToNearest(value), rounded) << value;
}

TEST(IsSharpenActive, NeedsAGainThatIsReached) {
    EXPECT_FALSE(IsSharpenActive({}));
    EXPECT_FALSE(IsSharpenActive(Curve(-500, 500, 0))) << "the extra gain takes back the base gain at once";
    EXPECT_TRUE(IsSharpenActive(Curve(-500, 500, 1)));
    EXPECT_TRUE(IsSharpenActive(Curve(0, 1, 0)));
    EXPECT_TRUE(IsSharpenActive(Curve(1, 0, 0)));
}

/// Base, extra and knee of the narrow measure, then of the wide one.
using Six = std::array<int32_t, 6>;

Six Derived(const SharpenParams& narrow, const SharpenParams& wide, float narrowScale, float wideScale) {
    const SharpenCoefficients c = DeriveSharpenCoefficients(narrow, wide, narrowScale, wideScale);
    return {c.narrowBase, c.narrowExtra, c.narrowKnee, c.wideBase, c.wideExtra, c.wideKnee};
}

TEST(DeriveSharpenCoefficients, ScalesBothMeasures) {
    EXPECT_EQ(Derived(Curve(1, 1, 3), Curve(0, 1, 0.5F), 1.0F, 256.0F), (Six{5, 10, 30, 0, 10922, 5461}));
    EXPECT_EQ(Derived({}, Curve(1, 0, 0), 1.0F, 1.0F)[3], 42);
}

TEST(DeriveSharpenCoefficients, ReducesTwoSmoothingKernelsAgainstEachOther) {
    // Both gains are −0.5: the wide one keeps 1 − 0.5 / 4 of it, the narrow one 1 − 0.25 / 4.
    // −0.46875 · 42 = −19.7 and −0.4375 · 10922 = −4778.4
    EXPECT_EQ(Derived(Curve(-1, 0, 0), Curve(-1, 0, 0), 8.0F, 256.0F), (Six{-20, 0, 0, -4778, 0, 0}));
    EXPECT_EQ(Derived(Curve(-1, 0, 0), Curve(1, 0, 0), 8.0F, 256.0F), (Six{-21, 0, 0, 10922, 0, 0}));
}

TEST(DeriveSharpenCoefficients, AbsurdGainsStayIntegers) {
    const Six six = Derived(Curve(1e30F, 1e30F, 1), Curve(100, 100, 1e30F), 1.0F, 256.0F);
    EXPECT_EQ(std::pair(six[0], six[5]), std::pair(INT32_MAX, INT32_MAX));
}

}  // namespace
}  // namespace clarivex
