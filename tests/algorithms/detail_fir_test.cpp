#include "algorithms/detail_fir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "simd/kernel_table.h"
#include "tests/support/guarded_plane.h"

namespace clarivex {
namespace {

constexpr int32_t stride = 64;

DetailTaps Mirrored(std::array<int16_t, 8> half) {
    DetailTaps taps{};
    for (size_t k = 0; k < half.size(); ++k) taps[k] = taps[15 - k] = half[k];
    return taps;
}

const DetailTaps long16 = Mirrored({-40, 25, 310, -250, 600, -1500, 700, 4300});
const DetailTaps long12 = Mirrored({0, 0, 310, -250, 600, -1500, 700, 4300});
const DetailTaps long8 = Mirrored({0, 0, 0, 0, 600, -1500, 700, 4300});
const DetailTaps general{0, 0, 0, 0, 0, 138, 385, -3321, 13756, -3321, 385, 138, 0, 0, 0, 0};

/// Runs the filter with rows of its own for the general form.
void Filter(const Plane& strip, const DetailTaps& taps, int32_t evenFilterPasses) {
    const size_t length = static_cast<size_t>(slackBefore + strip.width + slackBehind);
    std::vector<uint8_t> samples(length);
    std::vector<int16_t> words(length);
    DetailFir(strip, taps, evenFilterPasses, scalarKernels, {samples.data() + slackBefore, words.data() + slackBefore});
}

uint8_t Limited(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

TEST(ChooseDetailFirForm, FollowsSymmetryAndTheOutermostTap) {
    EXPECT_EQ(ChooseDetailFirForm(general), DetailFirForm::general);
    EXPECT_EQ(ChooseDetailFirForm(long16), DetailFirForm::symmetric16);
    EXPECT_EQ(ChooseDetailFirForm(Mirrored({0, 1, 0, 0, 0, 0, 0, 8191})), DetailFirForm::symmetric16);
    EXPECT_EQ(ChooseDetailFirForm(long12), DetailFirForm::symmetric12);
    EXPECT_EQ(ChooseDetailFirForm(Mirrored({0, 0, 0, -1, 0, 0, 0, 8193})), DetailFirForm::symmetric12);
    EXPECT_EQ(ChooseDetailFirForm(long8), DetailFirForm::symmetric8);
    DetailTaps nearly = long8;
    nearly[8] = static_cast<int16_t>(nearly[8] + 1);
    EXPECT_EQ(ChooseDetailFirForm(nearly), DetailFirForm::general);
}

TEST(DetailFir, TheSymmetricFormsReadUnfilteredSamplesAndKeepTheMargins) {
    struct Case {
        const DetailTaps& taps;
        int32_t rounding;
    };
    for (const auto& [taps, rounding] : {Case{long16, 7}, Case{long12, 7}, Case{long8, 6}})
        for (int32_t width = 1; width <= 64; ++width) {
            GuardedPlane actual(width, 2, stride, 0, static_cast<uint32_t>(width));
            const GuardedPlane before = actual;
            GuardedPlane expected = actual;
            for (int32_t y = 0; y < 2; ++y)
                for (int32_t x = 8; x < 8 + 8 * std::max((width - 16) >> 3, 0); ++x) {
                    int32_t sum = rounding;
                    for (int32_t j = 0; j < 8; ++j)
                        sum +=
                            ((before.At(x - 8 + j, y) + before.At(x + 7 - j, y)) * 64 * taps[static_cast<size_t>(j)]) >>
                            16;
                    expected.At(x, y) = Limited(sum >> 3);
                }
            Filter(actual.View(), taps, 2);
            EXPECT_TRUE(actual == expected) << width << ": " << FirstDifference(actual, expected);
        }
}

TEST(DetailFir, RunsSeveralPassesFromThreeOn) {
    GuardedPlane once(48, 2, stride, 0, 6);
    GuardedPlane twiceOnly = once;
    GuardedPlane three = once;
    GuardedPlane repeated = once;
    Filter(once.View(), long12, 0);
    Filter(twiceOnly.View(), long12, 2);
    EXPECT_TRUE(once == twiceOnly);
    Filter(three.View(), long12, 3);
    for (int32_t pass = 0; pass < 3; ++pass) Filter(repeated.View(), long12, 1);
    EXPECT_TRUE(three == repeated);
    EXPECT_FALSE(three == once);
}

}  // namespace
}  // namespace clarivex
