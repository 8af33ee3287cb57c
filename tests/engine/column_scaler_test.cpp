#include "engine/column_scaler.h"

#include <gtest/gtest.h>

#include "tests/engine/plain_scalers.h"
#include "tests/simd/plain_kernels.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

struct StageCase {
    const char* name;
    bool gated;
    int32_t mode;
    bool cross;
    bool strongTaps;  // sums that saturate
};

constexpr StageCase stageCases[] = {{"resampler", false, 0, false, false},  {"strong taps", false, 0, false, true},
                                    {"narrow", false, 1, false, false},     {"knee", false, 2, false, false},
                                    {"gated", true, 0, false, false},       {"gated and narrow", true, 1, false, false},
                                    {"cross stage", false, 0, true, false}, {"everything", true, 2, true, true}};

ColumnStages StagesOf(const StageCase& stageCase) {
    SharpenParams narrow, wide;
    narrow.baseGainLog2 = wide.baseGainLog2 = stageCase.gated ? -3.0F : -500.0F;
    narrow.extraGainLog2 = wide.extraGainLog2 = stageCase.gated ? 3.5F : 500.0F;
    narrow.knee = wide.knee = 2.0F;
    ColumnStages stages;
    stages.taps = UsualTaps();
    if (stageCase.strongTaps) stages.taps.b = {8000, -20000, 20000, 32000, 20000, -20000, -20000, -3680};
    stages.preStage = {stageCase.gated, stageCase.mode, DeriveSharpenCoefficients(narrow, wide, 1.0F, 1.0F)};
    stages.crossOn = stageCase.cross;
    stages.cross = {3, 5, 60};
    return stages;
}

testing::AssertionResult StripsEqualWholePicture(const StageCase& stageCase, int32_t width, int32_t height,
                                                 Texture texture, const KernelTable& kernels) {
    const ColumnStages stages = StagesOf(stageCase);
    const auto seed = static_cast<uint32_t>(width * 64 + height);
    const WorkingImage source = TestImage(width, height, texture, seed);
    const WorkingImage copy = TestImage(width, height, texture, seed);
    const WorkingImage actual = TestImage(width, 3 * height / 2, Texture::hard, 1);
    const WorkingImage expected = TestImage(width, 3 * height / 2, Texture::hard, 1);
    ColumnScratch scratch;
    ScaleLumaStrips(actual.Planes().luma, source.Planes().luma, EndOf(source), stages, scratch, kernels);
    PlainScaleColumns(expected.Planes().luma, copy.Planes().luma, EndOf(copy), stages);
    const auto same = SameSamples(actual.Planes().luma, expected.Planes().luma);
    if (same) return same;
    return testing::AssertionFailure() << stageCase.name << ", " << kernels.name << ", " << width << " x " << height
                                       << ": " << same.message();
}

TEST(ScaleColumnStrips, EqualTheWholePicture) {
    for (const StageCase& stageCase : stageCases)
        for (const int32_t width : {1, 15, 16, 17, 33})
            for (int32_t height = 1; height <= 40; height += width == 17 ? 1 : 5)
                for (const Texture texture : {Texture::hard, Texture::soft})
                    ASSERT_TRUE(StripsEqualWholePicture(stageCase, width, height, texture, plainKernels));
}

TEST(ScaleColumnStrips, EqualTheWholePictureAtEveryWidth) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        for (const StageCase& stageCase : stageCases)
            for (const int32_t width : {47, 64, 511, 512, 513, 1100})
                ASSERT_TRUE(StripsEqualWholePicture(stageCase, width, 9, Texture::hard, kernels));
    });
}

}  // namespace
}  // namespace clarivex
