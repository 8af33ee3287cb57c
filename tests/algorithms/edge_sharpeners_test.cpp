#include "algorithms/edge_sharpeners.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <vector>

#include "algorithms/detail_kernels.h"
#include "simd/kernel_table.h"
#include "tests/support/guarded_plane.h"

namespace clarivex {
namespace {

SharpenParams Curve(float base, float extra, float knee) {
    SharpenParams params;
    params.baseGainLog2 = base;
    params.extraGainLog2 = extra;
    params.knee = knee;
    return params;
}

const SharpenParams off{};
const SharpenParams crisp = Curve(1, 1, 2);
const SharpenParams smoothing = Curve(-500, 500, 3);

using Pass = std::function<void(const Plane&, const SharpenParams& narrow, const SharpenParams& wide)>;

std::vector<Pass> AllPasses() {
    return {[](const Plane& p, const SharpenParams& n, const SharpenParams&) { SharpenRowsNarrow(p, n); },
            [](const Plane& p, const SharpenParams& n, const SharpenParams&) { SharpenColumnsNarrow(p, n); },
            [](const Plane& p, const SharpenParams& n, const SharpenParams& w) {
                SharpenRowsGated(p, n, w, RowDither::byRow);
            },
            [](const Plane& p, const SharpenParams& n, const SharpenParams& w) { SharpenColumnsGated(p, n, w); },
            [](const Plane& p, const SharpenParams& n, const SharpenParams& w) {
                SharpenRowsKnee(p, n, w, false, RowDither::byRow, nullptr);
            },
            [](const Plane& p, const SharpenParams& n, const SharpenParams& w) {
                SharpenRowsKnee(p, n, w, true, RowDither::byRow, nullptr);
            },
            [](const Plane& p, const SharpenParams& n, const SharpenParams& w) { SharpenColumnsPlain(p, n, w); }};
}

TEST(EdgeSharpeners, InactiveGainsLeaveThePlaneUntouched) {
    for (const Pass& pass : AllPasses()) {
        GuardedPlane plane(45, 21, 64, 1, 3);
        const GuardedPlane before = plane;
        pass(plane.View(), off, off);
        EXPECT_TRUE(plane == before) << FirstDifference(plane, before);
    }
}

TEST(EdgeSharpeners, FlatAreasStayFlat) {
    for (const SharpenParams& gains : {crisp, smoothing})
        for (const uint8_t level : std::vector<uint8_t>{0, 77, 255})
            for (size_t i = 0; i < AllPasses().size(); ++i) {
                GuardedPlane plane(45, 21, 64, 1, 3);
                plane.Fill(level);
                const GuardedPlane before = plane;
                AllPasses()[i](plane.View(), gains, gains);
                for (int32_t y = 0; y < plane.height; ++y)  // left of a row the narrow pass sees black
                    plane.At(0, y) = i == 0 ? level : plane.At(0, y);
                EXPECT_TRUE(plane == before) << "pass " << i << ": " << FirstDifference(plane, before);
            }
}

TEST(EdgeSharpeners, OddAndTinyPlanesStayInsideTheirMemory) {
    for (const Pass& pass : AllPasses())
        for (int32_t width : {1, 2, 7, 8, 9, 15, 17, 33})
            for (int32_t height : {1, 2, 4, 5, 7, 16, 17}) {
                const int32_t stride = (width + 31) & ~31;
                GuardedPlane plane(width, height, stride, 1, 5);
                const GuardedPlane before = plane;
                pass(plane.View(), crisp, crisp);
                for (int32_t y = 0; y <= height; ++y)
                    for (int32_t x = 0; x < stride; ++x) plane.At(x, y) = before.At(x, y);
                EXPECT_TRUE(plane == before) << "guards of " << width << " × " << height;
            }
}

TEST(SharpenRowsNarrow, TheFirstColumnSeesBlackAtItsLeft) {
    GuardedPlane plane(16, 2, 64, 1, 1);
    plane.Fill(100);
    SharpenRowsNarrow(plane.View(), Curve(1, 0, 0));  // base gain 5
    EXPECT_EQ(plane.At(0, 0), 100 + ((5 * 100 + 12) >> 4));
    EXPECT_EQ(plane.At(0, 1), 100 + ((5 * 100 + 4) >> 4));
    EXPECT_EQ(plane.At(1, 0), 100);
}

TEST(SharpenRowsNarrow, SmoothsRipplesBelowTheKneeOnly) {
    GuardedPlane plane(24, 1, 64, 1, 1);
    plane.Fill(100);
    plane.At(5, 0) = 102;
    plane.At(12, 0) = 160;
    SharpenRowsNarrow(plane.View(), smoothing);  // gains −5 and 5, knee 15
    EXPECT_EQ(plane.At(5, 0), 102 + ((-15 + 4) >> 4));
    EXPECT_EQ(plane.At(4, 0), 100 + ((10 + 12) >> 4));
    EXPECT_EQ(plane.At(12, 0), 160 + ((-15 + 12) >> 4));
    EXPECT_EQ(plane.At(11, 0), 100 + ((15 + 4) >> 4));
}

TEST(SharpenColumnsNarrow, CopiesTheLastRowBelowThePlane) {
    for (const int32_t height : {2, 7}) {
        GuardedPlane plane(20, height, 32, 1, 9);
        const GuardedPlane before = plane;
        SharpenColumnsNarrow(plane.View(), crisp);
        for (int32_t x = 0; x < 32; ++x) EXPECT_EQ(plane.At(x, height), before.At(x, height - 1));
        EXPECT_EQ(std::equal(&plane.At(0, height - 1), &plane.At(0, height), &before.At(0, height - 1)), height == 7);
    }
    GuardedPlane single(20, 1, 32, 1, 9);
    const GuardedPlane before = single;
    SharpenColumnsNarrow(single.View(), crisp);
    EXPECT_TRUE(single == before);
}

TEST(SharpenRowsGated, FillsTheSpareColumnsOfNarrowPlanesAndFiltersNothing) {
    GuardedPlane plane(5, 18, 32, 1, 4);
    GuardedPlane expected = plane;
    for (int32_t y = 0; y < 18; ++y)
        for (int32_t x = 5; x < 8; ++x) expected.At(x, y) = plane.At(4, y);
    SharpenRowsGated(plane.View(), crisp, crisp, RowDither::byRow);
    EXPECT_TRUE(plane == expected) << FirstDifference(plane, expected);
}

TEST(SharpenColumnsPlain, FiltersTheRowBetweenTheMarginsOnly) {
    GuardedPlane six(20, 6, 32, 1, 4);
    GuardedPlane before = six;
    SharpenColumnsPlain(six.View(), crisp, crisp);
    EXPECT_TRUE(six == before);

    GuardedPlane seven(1, 7, 32, 1, 4);
    seven.Fill(100);
    seven.At(0, 3) = 110;
    before = seven;
    SharpenColumnsPlain(seven.View(), Curve(1, 0, 0), Curve(1, 1, 0.5F));  // narrow 5; wide 42, 84 above 42
    // N = 20, W = 40: (5 · 20 · 16 + 42 · 40 + 84 · 40 − 42 + 192) / 256 = 26.5
    EXPECT_EQ(seven.At(0, 3), 136);
    seven.At(0, 3) = 110;
    EXPECT_TRUE(seven == before);
}

// The scalar form, written as the two walks over a row that its fused loop stands for.
std::vector<uint8_t> ScalarRow(const std::vector<uint8_t>& s, int32_t y, const SharpenCoefficients& c) {
    const auto width = static_cast<int32_t>(s.size());
    const auto coreOf = [](int32_t v, int32_t knee) { return (v < 0 ? -1 : 1) * std::max(std::abs(v) - knee, 0); };
    std::vector<int32_t> unlimited(s.begin(), s.end());
    for (size_t x = 3; x + 4 <= s.size(); ++x) {
        const int32_t narrow = NarrowMeasure(s[x - 1], s[x], s[x + 1]);
        const int32_t wide = 16 * WideMeasure(s[x - 3], s[x - 2], s[x - 1], s[x], s[x + 1], s[x + 2], s[x + 3]);
        int32_t rounding = x % 2 == 1 ? 160 : 32;
        rounding = y % 2 == 1 ? 256 - rounding : rounding;
        unlimited[x] = (16 * s[x] + ((wide * (c.wideBase << 8)) >> 16) +
                        coreOf((wide * (c.wideExtra << 8)) >> 16, c.wideKnee >> 4) + c.narrowBase * narrow +
                        coreOf(c.narrowExtra * narrow, c.narrowKnee) + (rounding >> 4)) >>
                       4;
    }
    std::vector<uint8_t> out(s.size());
    std::vector<int32_t> clipped(s.size());
    for (size_t x = 0; x < s.size(); ++x) {
        out[x] = static_cast<uint8_t>(std::clamp(unlimited[x], 0, 255));
        clipped[x] = std::abs(unlimited[x] - out[x]);
    }
    for (size_t x = 5; static_cast<int32_t>(x) <= width - 6; ++x) {
        const int32_t near = clipped[x - 2] + clipped[x - 1] + clipped[x] + clipped[x + 1] + clipped[x + 2];
        const int32_t curve = unlimited[x - 1] - 2 * unlimited[x] + unlimited[x + 1];
        out[x] = static_cast<uint8_t>(std::clamp((512 * unlimited[x] + std::min(near, 170) * curve) >> 9, 0, 255));
    }
    return out;
}

TEST(SharpenRowsKnee, TheScalarFormSoftensWhatWasClipped) {
    const SharpenParams narrow = Curve(1, 0.5F, 8);
    const SharpenParams wide = Curve(0.5F, 0.5F, 20);
    const SharpenCoefficients coefficients = DeriveSharpenCoefficients(narrow, wide, 1.0F, 1.0F);
    for (int32_t width = 1; width <= 40; ++width) {
        GuardedPlane plane(width, 4, 64, 1, static_cast<uint32_t>(width));
        for (int32_t x = 0; x < width; ++x)  // steps between black and white, which ring and clip
            plane.At(x, 1) = x / 4 % 2 == 0 ? 2 : 250;
        GuardedPlane expected = plane;
        for (int32_t y = 0; y < 4; ++y) {
            const std::vector<uint8_t> row(&plane.At(0, y), &plane.At(0, y) + width);
            const std::vector<uint8_t> filtered = ScalarRow(row, y, coefficients);
            std::copy(filtered.begin(), filtered.end(), &expected.At(0, y));
        }
        SharpenRowsKnee(plane.View(), narrow, wide, true, RowDither::byRow, nullptr);
        EXPECT_TRUE(plane == expected) << width << ": " << FirstDifference(plane, expected);
    }
}

TEST(SharpenRowsKnee, RunsItsFilterBehindTheKernelAndAlsoAlone) {
    DetailTaps taps{};
    taps[7] = taps[8] = 4096;
    std::vector<uint8_t> samples(slackBefore + 50 + slackBehind);
    std::vector<int16_t> words(samples.size());
    const StripFilter filter{taps, 2, scalarKernels, {samples.data() + slackBefore, words.data() + slackBefore}};

    for (const SharpenParams& gains : {off, crisp}) {
        GuardedPlane plane(50, 20, 64, 1, 8);
        GuardedPlane expected = plane;
        SharpenRowsKnee(expected.View(), gains, off, false, RowDither::byRow, nullptr);
        DetailFir(expected.View(), taps, 2, scalarKernels, filter.scratch);
        SharpenRowsKnee(plane.View(), gains, off, false, RowDither::byRow, &filter);
        EXPECT_TRUE(plane == expected) << FirstDifference(plane, expected);
    }
}

}  // namespace
}  // namespace clarivex
