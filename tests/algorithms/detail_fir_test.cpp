#include "algorithms/detail_fir.h"

#include <gtest/gtest.h>

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

TEST(DetailFir, TheSymmetricFormsGiveThePinnedSamplesAndKeepTheMargins) {
    EXPECT_EQ(DigestOfFiltered([](const Plane& strip) { Filter(strip, long16, 2); }, {1, 2}), 0xb0be53bcU);
    EXPECT_EQ(DigestOfFiltered([](const Plane& strip) { Filter(strip, long12, 2); }, {1, 2}), 0x2118cf66U);
    EXPECT_EQ(DigestOfFiltered([](const Plane& strip) { Filter(strip, long8, 2); }, {1, 2}), 0x8dbd3657U);
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
