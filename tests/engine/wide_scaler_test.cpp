#include "engine/wide_scaler.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

#include "tests/engine/plain_scalers.h"
#include "tests/simd/plain_kernels.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr DetailTaps even8{0, 0, 0, 0, 332, 443, -7749, 11070, 11070, -7749, 443, 332};
constexpr DetailTaps even12{0, 0, 0, 286, -1058, 3175, -7235, 8928, 8928, -7235, 3175, -1058, 286};
constexpr DetailTaps even16{106, 106, -318, -530, 1019, 20, -4619, 8312, 8312, -4619, 20, 1019, -530, -318, 106, 106};

WideStages Stages(bool limitEdges, const DetailTaps& taps) {
    WideStages stages;
    stages.taps = UsualTwofoldTaps();
    stages.limitEdges = limitEdges;
    stages.postFilterOn = taps != DetailTaps{};
    stages.rowTaps = taps;
    stages.columnTaps = HalvePostTaps(taps);
    return stages;
}

/// Both forms; the source's memory ends with its last sample, and of the target only the picture's samples are written.
testing::AssertionResult RowsInPassingEqualWholePlanes(const WideStages& stages, int32_t width, int32_t height,
                                                       Texture texture, const KernelTable& kernels) {
    const DecodedPicture picture(2 * width, 2 * height, 2 * width, texture, 3);
    const Plane& source = picture.Source().planes.third;
    const WorkingImage actual = TestImage(2 * width, 2 * height, Texture::hard, 1);
    const WorkingImage expected = TestImage(2 * width, 2 * height, Texture::hard, 1);
    WideScratch scratch;
    ScaleBothTwice(actual.Planes().luma, source, stages, scratch, kernels);
    PlainScaleBothTwice(expected.Planes().luma, source, stages);
    const Plane& to = actual.Planes().luma;
    if (const auto same = SameSamples(to, expected.Planes().luma, to.stride, to.height + 16); !same)
        return testing::AssertionFailure()
               << kernels.name << ", " << width << " x " << height << ": " << same.message();
    return testing::AssertionSuccess();
}

TEST(ScaleBothTwice, EqualsTheWholePlanes) {
    for (const auto& taps : {DetailTaps{}, even8, even12, even16})
        for (const bool limitEdges : {false, true})
            for (const auto& [width, height] :
                 {std::pair{1, 1}, {2, 3}, {5, 9}, {7, 4}, {8, 8}, {9, 12}, {13, 11}, {24, 17}, {31, 20}})
                for (const Texture texture : {Texture::hard, Texture::soft})
                    ASSERT_TRUE(
                        RowsInPassingEqualWholePlanes(Stages(limitEdges, taps), width, height, texture, plainKernels));
}

TEST(ScaleBothTwice, EqualsTheWholePlanesAtEveryWidth) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        for (int32_t width = 3; width <= 150; width += 7)
            ASSERT_TRUE(RowsInPassingEqualWholePlanes(Stages(true, even12), width, 14, Texture::hard, kernels));
        WideStages marked = Stages(true, even8);
        marked.edgeLimits = {.gain = 40, .deadZone = 17, .outerWeight = 90, .slope = 600, .offset = 2, .margin = 9};
        ASSERT_TRUE(RowsInPassingEqualWholePlanes(marked, 70, 14, Texture::hard, kernels));
    });
}

TEST(ScaleBothTwice, KeepsFlatPlanesFlat) {
    const WorkingImage source = TestImage(40, 30, Texture::hard, 1);
    const WorkingImage target = TestImage(80, 60, Texture::hard, 2);
    const Plane& luma = source.Planes().luma;
    const Plane& out = target.Planes().luma;
    WideScratch scratch;
    for (const int32_t value : {0, 1, 128, 254, 255}) {
        std::memset(luma.data, value, static_cast<size_t>(luma.stride * luma.height));
        ScaleBothTwice(out, luma, Stages(true, even12), scratch, scalarKernels);
        for (int32_t y = 0; y < out.height; ++y)
            for (int32_t x = 0; x < out.width; ++x) ASSERT_EQ(out.Row(y)[x], value) << x << ", " << y;
    }
}

TEST(ScaleBothTwice, LimitsOvershootOnlyAtTheEnd) {
    DetailTaps average{};
    average[7] = average[8] = 4096;
    WideStages stages = Stages(false, average);
    stages.taps = {{0, 0, 0, -4096, 20480}, {0, 0, 0, 20480, -4096}};
    const WorkingImage source = TestImage(32, 24, Texture::hard, 1);
    const WorkingImage target = TestImage(64, 48, Texture::hard, 2);
    const Plane& luma = source.Planes().luma;
    for (int32_t y = 0; y < luma.height; ++y)
        for (int32_t x = 0; x < luma.width; ++x) luma.Row(y)[x] = x < 16 ? 0 : 255;
    WideScratch scratch;
    ForEachRunnableTable([&](const KernelTable& kernels) {
        ScaleBothTwice(target.Planes().luma, luma, stages, scratch, kernels);
        const uint8_t* row = target.Planes().luma.Row(20);
        EXPECT_EQ(row[31], 0);
        EXPECT_EQ(row[32], 159) << "the mean of 0 and of 5/4 of 255";
        EXPECT_EQ(row[33], 255) << "the mean of 5/4 of 255 and of 255";
        EXPECT_EQ(row[34], 255);
    });
}

TEST(HalvePostTaps, HalvesAroundTheCentreAndKeepsTheSum) {
    EXPECT_EQ(HalvePostTaps(even8), (DetailTaps{0, 0, 0, 0, 166, 222, -3874, 7582, 7582, -3874, 222, 166}));
    for (const auto& taps : {even12, even16}) {
        const DetailTaps halved = HalvePostTaps(taps);
        EXPECT_EQ(std::accumulate(halved.begin(), halved.end(), 0), 8192);
        EXPECT_TRUE(ArePaired(halved));
    }
    DetailTaps odd{};
    odd[8] = 8160;
    EXPECT_FALSE(ArePaired(odd));
}

}  // namespace
}  // namespace clarivex
