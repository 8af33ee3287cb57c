#include "algorithms/edge_sharpeners.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "simd/kernel_table.h"
#include "tests/support/crc32.h"
#include "tests/support/guarded_plane.h"
#include "tests/support/sharpen_curve.h"

namespace clarivex {
namespace {

// Steps between black and white ring and clip; what was clipped softens its neighbours.
TEST(SharpenRowsKnee, TheScalarFormGivesThePinnedSamples) {
    uint32_t digest = 0;
    for (int32_t width = 1; width <= 40; ++width) {
        GuardedPlane plane(width, 4, 64, 1, static_cast<uint32_t>(width));
        for (int32_t x = 0; x < width; ++x) plane.At(x, 1) = x / 4 % 2 == 0 ? 2 : 250;
        GuardedPlane around = plane;
        SharpenRowsKnee(plane.View(), Curve(1, 0.5F, 8), Curve(0.5F, 0.5F, 20), true, RowDither::byRow, nullptr);
        digest = Crc32(plane.View(), digest);
        for (int32_t y = 0; y < 4; ++y) std::copy_n(&plane.At(0, y), width, &around.At(0, y));
        EXPECT_TRUE(plane == around) << width;
    }
    EXPECT_EQ(digest, 0x562d08f6U);
}

TEST(SharpenRowsKnee, RunsItsFilterBehindTheKernelAndAlsoAlone) {
    DetailTaps taps{};
    taps[7] = taps[8] = 4096;
    std::vector<uint8_t> samples(slackBefore + 50 + slackBehind);
    std::vector<int16_t> words(samples.size());
    const StripFilter filter{taps, 2, scalarKernels, {samples.data() + slackBefore, words.data() + slackBefore}};

    for (const SharpenParams& gains : {SharpenParams{}, Curve(1, 1, 2)}) {
        GuardedPlane plane(50, 20, 64, 1, 8);
        GuardedPlane expected = plane;
        SharpenRowsKnee(expected.View(), gains, {}, false, RowDither::byRow, nullptr);
        DetailFir(expected.View(), taps, 2, scalarKernels, filter.scratch);
        SharpenRowsKnee(plane.View(), gains, {}, false, RowDither::byRow, &filter);
        EXPECT_TRUE(plane == expected) << gains.extraGainLog2;
    }
}

}  // namespace
}  // namespace clarivex
