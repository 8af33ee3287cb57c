// The strip forms against plain ones that read an untouched copy and look neighbours up by the rules for the edges.
#include "algorithms/detail_strips.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "algorithms/detail_kernels.h"
#include "tests/support/guarded_plane.h"

namespace clarivex {
namespace {

constexpr SharpenCoefficients crisp{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 5000, .wideExtra = 9000, .wideKnee = 60 << 13};
constexpr SharpenCoefficients crispColumns{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 20, .wideExtra = 35, .wideKnee = 3000};
constexpr SharpenCoefficients smoothing{
    .narrowBase = -5, .narrowExtra = 5, .narrowKnee = 60, .wideBase = -9000, .wideExtra = 30000, .wideKnee = 90 << 12};

constexpr int32_t stride = 64;

using Look = std::function<int32_t(int32_t offset)>;

int16_t NarrowOf(const Look& at) { return NarrowMeasure(at(-1), at(0), at(1)); }

int16_t WideOf(const Look& at) { return WideMeasure(at(-3), at(-2), at(-1), at(0), at(1), at(2), at(3)); }

int32_t RowRounding(RowDither dither, int32_t x, int32_t y) {
    const bool low = dither == RowDither::byRow ? y % 2 == 1 : (x + y) % 2 == 1;
    return low ? 4 : 12;
}

void GatedGroup(GuardedPlane& out, int32_t x, int32_t y, const GatedGains& gains,
                const std::function<Look(int32_t x)>& look, const std::function<int32_t(int32_t x)>& rounding) {
    uint8_t samples[gateGroup];
    int16_t narrow[gateGroup];
    int16_t wide[gateGroup];
    uint8_t dither[gateGroup];
    for (int32_t i = 0; i < gateGroup; ++i) {
        const Look at = look(x + i);
        samples[i] = static_cast<uint8_t>(at(0));
        narrow[i] = NarrowOf(at);
        wide[i] = WideOf(at);
        dither[i] = static_cast<uint8_t>(rounding(x + i));
    }
    GatedDetail(samples, narrow, wide, gains, dither, &out.At(x, y));
}

/// Pads the rows and filters all but the last block of 8 by `filter(x, y, at)`, x a multiple of `step`.
GuardedPlane WideRows(
    const GuardedPlane& before, int32_t step,
    const std::function<void(GuardedPlane&, int32_t, int32_t, const std::function<Look(int32_t)>&)>& filter) {
    GuardedPlane after = before;
    const int32_t width = before.width;
    const int32_t padded = (width + 7) & ~7;
    for (int32_t y = 0; y < before.height; ++y) {
        for (int32_t x = width; x < padded; ++x) after.At(x, y) = before.At(width - 1, y);
        const auto look = [&before, y, width](int32_t x) -> Look {
            return [&before, y, width, x](int32_t offset) -> int32_t {
                return x + offset < 0 ? before.At(1, y) : before.At(std::min(x + offset, width - 1), y);
            };
        };
        for (int32_t x = 0; x < padded - 8; x += step) filter(after, x, y, look);
    }
    return after;
}

class StripSizes : public testing::TestWithParam<std::pair<int32_t, int32_t>> {
protected:
    /// A picture whose strip has no spare columns where the width is the stride.
    GuardedPlane Picture() const {
        const auto [width, height] = GetParam();
        return GuardedPlane(width, height, stride, 1, static_cast<uint32_t>(width * 31 + height));
    }
};

INSTANTIATE_TEST_SUITE_P(Rows, StripSizes,
                         testing::Values(std::pair{1, 1}, std::pair{2, 3}, std::pair{7, 16}, std::pair{8, 5},
                                         std::pair{9, 16}, std::pair{16, 2}, std::pair{17, 16}, std::pair{31, 7},
                                         std::pair{57, 4}, std::pair{63, 16}, std::pair{64, 16}));

TEST_P(StripSizes, NarrowDetailRowsReadsUnfilteredNeighbours) {
    for (const SharpenCoefficients& coefficients : {crisp, smoothing})
        for (const bool bottom : {false, true}) {
            GuardedPlane actual = Picture();
            const GuardedPlane before = actual;
            GuardedPlane expected = actual;
            const NarrowGains gains = MakeNarrowGains(coefficients);
            for (int32_t y = 0; y < before.height; ++y)
                for (int32_t x = 0; x < ((before.width + 7) & ~7); ++x) {
                    const bool nothingBehind = bottom && y == before.height - 1 && x == stride - 1;
                    const int32_t left = x == 0 ? 0 : before.At(x - 1, y);
                    const int32_t right = before.At(nothingBehind ? x : x + 1, y);
                    expected.At(x, y) = NarrowDetail(before.At(x, y), NarrowMeasure(left, before.At(x, y), right),
                                                     gains, RowRounding(RowDither::checkerboard, x, y));
                }
            NarrowDetailRows(actual.View(), coefficients, bottom);
            EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
        }
}

TEST_P(StripSizes, KneeDetailRowsLeavesTheLastBlock) {
    for (const SharpenCoefficients& coefficients : {crisp, smoothing})
        for (const RowDither dither : {RowDither::byRow, RowDither::checkerboard}) {
            GuardedPlane actual = Picture();
            const KneeGains gains = MakeKneeGains(coefficients);
            const GuardedPlane expected =
                WideRows(actual, 1, [&](GuardedPlane& after, int32_t x, int32_t y, auto look) {
                    const Look at = look(x);
                    after.At(x, y) = KneeDetail(static_cast<uint8_t>(at(0)), NarrowOf(at), WideOf(at), gains,
                                                RowRounding(dither, x, y));
                });
            KneeDetailRows(actual.View(), coefficients, dither);
            EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
        }
}

TEST_P(StripSizes, GatedDetailRowsLeavesTheLastBlock) {
    for (const SharpenCoefficients& coefficients : {crisp, smoothing})
        for (const RowDither dither : {RowDither::byRow, RowDither::checkerboard}) {
            GuardedPlane actual = Picture();
            const GatedGains gains = MakeGatedRowGains(coefficients);
            const GuardedPlane expected =
                WideRows(actual, gateGroup, [&](GuardedPlane& after, int32_t x, int32_t y, auto look) {
                    GatedGroup(after, x, y, gains, look,
                               [&](int32_t column) { return RowRounding(dither, column, y); });
                });
            GatedDetailRows(actual.View(), coefficients, dither);
            EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
        }
}

class StripHeights : public testing::TestWithParam<int32_t> {
protected:
    static std::vector<int32_t> Widths() { return {1, 3, 4, 10, 16}; }
    GuardedPlane Picture(int32_t width) const {
        return GuardedPlane(width, GetParam(), stride, 1, static_cast<uint32_t>(GetParam() * 17 + width));
    }
    /// Column x of the picture around row y; above it row 0 is repeated.
    static Look Down(const GuardedPlane& before, int32_t x, int32_t y) {
        return [&before, x, y](int32_t offset) -> int32_t { return before.At(x, std::max(y + offset, 0)); };
    }
};

INSTANTIATE_TEST_SUITE_P(Columns, StripHeights, testing::Values(1, 2, 3, 4, 5, 6, 7, 8, 16, 21, 40));

TEST_P(StripHeights, NarrowDetailColumnsWorksInPairsOfRows) {
    for (const int32_t width : Widths()) {
        GuardedPlane actual = Picture(width);
        GuardedPlane before = actual;
        const int32_t height = before.height;
        for (int32_t x = 0; x < width && height > 1; ++x) before.At(x, height) = before.At(x, height - 1);
        GuardedPlane expected = before;
        for (int32_t y = 0; y < (height & ~1); ++y)
            for (int32_t x = 0; x < width; ++x)
                expected.At(x, y) = NarrowDetail(before.At(x, y), NarrowOf(Down(before, x, y)), MakeNarrowGains(crisp),
                                                 y % 2 == 0 ? 4 : 12);
        NarrowDetailColumns(actual.View(), crisp);
        EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
    }
}

TEST_P(StripHeights, GatedDetailColumnsLeavesTheBottomRows) {
    for (const int32_t width : Widths()) {
        GuardedPlane actual = Picture(width);
        const GuardedPlane before = actual;
        GuardedPlane expected = before;
        const GatedGains gains = MakeGatedColumnGains(crispColumns);
        for (int32_t y = 0; y < (before.height + 1) / 2 * 2 - 4; ++y)
            for (int32_t x = 0; x < width; x += gateGroup)
                GatedGroup(
                    expected, x, y, gains, [&](int32_t column) { return Down(before, column, y); },
                    [y](int32_t) { return y % 2 == 0 ? 4 : 12; });
        GatedDetailColumns(actual.View(), crispColumns);
        EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
    }
}

TEST_P(StripHeights, KneeDetailColumnsLeavesThreeRowsAtBothEnds) {
    for (const int32_t width : Widths()) {
        GuardedPlane actual = Picture(width);
        const GuardedPlane before = actual;
        GuardedPlane expected = before;
        for (int32_t y = 3; y <= before.height - 4; ++y)
            for (int32_t x = 0; x < width; ++x) {
                const Look at = Down(before, x, y);
                const int32_t narrow = NarrowOf(at);
                const int32_t wide = WideOf(at);
                const auto coreOf = [](int32_t v, int32_t knee) {
                    return v > knee ? v - knee : v < -knee ? v + knee : 0;
                };
                const int32_t sum = 256 * at(0) + 16 * 7 * narrow + 20 * wide + coreOf(35 * wide, 3000) +
                                    16 * coreOf(9 * narrow, 300) + (y % 2 == 0 ? 64 : 192);
                expected.At(x, y) = static_cast<uint8_t>(std::clamp(sum >> 8, 0, 255));
            }
        KneeDetailColumns(actual.View(), crispColumns);
        EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
    }
}

}  // namespace
}  // namespace clarivex
