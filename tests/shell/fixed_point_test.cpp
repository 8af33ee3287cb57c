// Numbers in the form of the settings store.
#include "shell/fixed_point.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(FixedPoint, RoundsToTheNearestStepAndLimitsWhatDoesNotFit) {
    EXPECT_EQ(1U, ToFixedPoint(0.5 / 65536));
    EXPECT_EQ(0U, ToFixedPoint(0.49 / 65536));
    EXPECT_EQ(0U, ToFixedPoint(-1.0));
    EXPECT_EQ(UINT32_MAX, ToFixedPoint(65536.0));
    EXPECT_EQ(UINT32_MAX, ToFixedPoint(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(0U, ToFixedPoint(std::numeric_limits<double>::quiet_NaN()));
}

}  // namespace
}  // namespace clarivex
