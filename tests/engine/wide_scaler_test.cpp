#include "engine/wide_scaler.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace clarivex
