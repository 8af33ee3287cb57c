#include "algorithms/sharpen_params.h"

#include "algorithms/rounding.h"
#include "tests/support/sharpen_curve.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(RoundToNearest, TakesTiesToEvenAndStaysNegatable) {
    EXPECT_EQ(RoundToNearest(0.5), 0);
    EXPECT_EQ(RoundToNearest(1.5), 2);
    EXPECT_EQ(RoundToNearest(-2.5), -2);
    EXPECT_EQ(RoundToNearest(-3.4999), -3);
    EXPECT_EQ(RoundToNearest(1e300), std::numeric_limits<int32_t>::max());
    EXPECT_EQ(RoundToNearest(-1e300), -std::numeric_limits<int32_t>::max());
    EXPECT_EQ(RoundToNearest(std::nan("")), 0);
}

TEST(IsSharpenActive, NeedsAGainThatIsReached) {
    EXPECT_FALSE(IsSharpenActive({}));
    EXPECT_FALSE(IsSharpenActive(Curve(-500, 500, 0))) << "the extra gain takes back the base gain at once";
    EXPECT_TRUE(IsSharpenActive(Curve(-500, 500, 1)));
    EXPECT_TRUE(IsSharpenActive(Curve(0, 1, 0)));
    EXPECT_TRUE(IsSharpenActive(Curve(1, 0, 0)));
}

TEST(DeriveSharpenCoefficients, ScalesBothMeasures) {
    const SharpenCoefficients c = DeriveSharpenCoefficients(Curve(1, 1, 3), Curve(0, 1, 0.5F), 1.0F, 256.0F);
    EXPECT_EQ(c.narrowBase, 5);
    EXPECT_EQ(c.narrowExtra, 10);
    EXPECT_EQ(c.narrowKnee, 30);
    EXPECT_EQ(c.wideBase, 0);
    EXPECT_EQ(c.wideExtra, 10922);
    EXPECT_EQ(c.wideKnee, 5461);
    EXPECT_EQ(DeriveSharpenCoefficients({}, Curve(1, 0, 0), 1.0F, 1.0F).wideBase, 42);
}

TEST(DeriveSharpenCoefficients, ReducesTwoSmoothingKernelsAgainstEachOther) {
    // Both gains are −0.5: the wide one keeps 1 − 0.5 / 4 of it, the narrow one 1 − 0.25 / 4.
    const SharpenCoefficients both = DeriveSharpenCoefficients(Curve(-1, 0, 0), Curve(-1, 0, 0), 8.0F, 256.0F);
    EXPECT_EQ(both.narrowBase, -20);  // −0.46875 · 42 = −19.7
    EXPECT_EQ(both.wideBase, -4778);  // −0.4375 · 10922 = −4778.4
    EXPECT_EQ(both.narrowExtra, 0);
    EXPECT_EQ(both.wideExtra, 0);

    const SharpenCoefficients one = DeriveSharpenCoefficients(Curve(-1, 0, 0), Curve(1, 0, 0), 8.0F, 256.0F);
    EXPECT_EQ(one.narrowBase, -21);
    EXPECT_EQ(one.wideBase, 10922);
}

TEST(DeriveSharpenCoefficients, AbsurdGainsStayIntegers) {
    const SharpenCoefficients c =
        DeriveSharpenCoefficients(Curve(1e30F, 1e30F, 1), Curve(100, 100, 1e30F), 1.0F, 256.0F);
    EXPECT_EQ(c.narrowBase, std::numeric_limits<int32_t>::max());
    EXPECT_EQ(c.wideKnee, std::numeric_limits<int32_t>::max());
}

}  // namespace
}  // namespace clarivex
