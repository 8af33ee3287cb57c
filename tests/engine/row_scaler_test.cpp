#include "engine/row_scaler.h"

#include <gtest/gtest.h>

#include "tests/engine/plain_scalers.h"
#include "tests/simd/plain_kernels.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

SharpenCoefficients Gains(float base, float extra, float knee) {
    SharpenParams narrow, wide;
    narrow.baseGainLog2 = wide.baseGainLog2 = base;
    narrow.extraGainLog2 = wide.extraGainLog2 = extra;
    narrow.knee = wide.knee = knee;
    return DeriveSharpenCoefficients(narrow, wide, 1.0F, 256.0F);
}

struct StageCase {
    const char* name;
    void (*set)(RowStages&);
};

void SetPreStage(RowStages& stages, bool gated, int32_t mode) {
    stages.preStage = {gated, mode, gated ? Gains(-3, 3.5F, 2.0F) : Gains(-500, 500, 2.0F)};
}
void SetDetail(RowStages& stages) {
    stages.detailOn = true;
    stages.detailGains = Gains(0.5F, 0.5F, 3.0F);
}
void SetPostFilter(RowStages& stages,
                   const DetailTaps& taps = {0, 0, 0, 0, 0, 138, 385, -3321, 13756, -3321, 385, 138}) {
    stages.postFilterOn = true;
    stages.postTaps = taps;
}
void SetBooster(RowStages& stages) {
    stages.boosterOn = true;
    stages.booster = {6, 40};
}
void SetCross(RowStages& stages) {
    stages.crossOn = true;
    stages.cross = {3, 5, 60};
}

// clang-format off
constexpr DetailTaps even8{0, 0, 0, 0, 332, 443, -7749, 11070, 11070, -7749, 443, 332};
constexpr DetailTaps even12{0, 0, 0, 286, -1058, 3175, -7235, 8928, 8928, -7235, 3175, -1058, 286};
constexpr DetailTaps even16{106, 106, -318, -530, 1019, 20, -4619, 8312, 8312, -4619, 20, 1019, -530, -318, 106, 106};

constexpr StageCase stageCases[] = {
    {"resampler alone", [](RowStages& s) { s.edgeStage = EdgeStage::none; }},
    {"simple limiter", [](RowStages& s) { s.edgeStage = EdgeStage::simple; }},
    {"full limiter", [](RowStages&) {}},
    {"full limiter of other values", [](RowStages& s) { s.edgeLimits = {37, 12, 90, -700, 3, 5}; }},
    {"post filter", [](RowStages& s) { SetPostFilter(s); }},
    {"post filter alone", [](RowStages& s) { SetPostFilter(s); s.edgeStage = EdgeStage::none; }},
    {"even filter of 8 taps", [](RowStages& s) { SetPostFilter(s, even8); }},
    {"even filter of 12 taps, three passes", [](RowStages& s) { SetPostFilter(s, even12); s.evenFilterPasses = 3; }},
    {"even filter of 16 taps", [](RowStages& s) { SetPostFilter(s, even16); }},
    {"detail stage", [](RowStages& s) { SetDetail(s); }},
    {"detail stage and post filter", [](RowStages& s) { SetDetail(s); SetPostFilter(s); }},
    {"booster", [](RowStages& s) { SetBooster(s); SetPostFilter(s); }},
    {"rank stages", [](RowStages& s) { SetPostFilter(s, even12); s.rankStage = RankStage::smaller; }},
    {"cross stage", [](RowStages& s) { SetCross(s); s.edgeStage = EdgeStage::none; }},
    {"narrow pre-stage", [](RowStages& s) { SetPreStage(s, false, 1); }},
    {"knee pre-stage", [](RowStages& s) { SetPreStage(s, false, 2); }},
    {"gated pre-stage", [](RowStages& s) { SetPreStage(s, true, 0); }},
    {"everything", [](RowStages& s) {
         SetPreStage(s, true, 2); SetDetail(s); SetPostFilter(s, even12); SetBooster(s); SetCross(s); }},
};
// clang-format on

/// Both forms on the same picture, in working images.
testing::AssertionResult StripsEqualWholePicture(const StageCase& stageCase, RowScale scale, int32_t width,
                                                 int32_t height, Texture texture, const KernelTable& kernels) {
    if (scale == RowScale::twofold && width < shortestDoubledRow) return testing::AssertionSuccess();
    RowStages stages;
    stages.scale = scale;
    stages.taps = UsualTaps();
    stages.twofoldTaps = UsualTwofoldTaps();
    stageCase.set(stages);
    const auto seed = static_cast<uint32_t>(width * 64 + height);
    const WorkingImage source = TestImage(width, height, texture, seed);
    const WorkingImage copy = TestImage(width, height, texture, seed);
    const int32_t columns = ScaledWidth(scale, width);
    const WorkingImage actual = TestImage(columns, height, Texture::hard, 1);
    const WorkingImage expected = TestImage(columns, height, Texture::hard, 2);
    RowScratch scratch;
    ScaleLumaStrips(actual.Planes().luma, source.Planes().luma, EndOf(source), stages, scratch, kernels);
    PlainScaleRows(expected.Planes().luma, copy.Planes().luma, EndOf(copy), stages);
    // Packed output shows the column behind an odd width.
    const auto same = SameSamples(actual.Planes().luma, expected.Planes().luma, (columns + 1) & ~1, height);
    if (same) return same;
    return testing::AssertionFailure() << stageCase.name << ", " << kernels.name << ", " << width << " x " << height
                                       << " to " << columns << ": " << same.message();
}

TEST(ScaleRowStrips, EqualTheWholePicture) {
    for (const StageCase& stageCase : stageCases)
        for (const int32_t height : {1, 15, 16, 17, 33})
            for (int32_t width = 1; width <= 40; width += height == 17 ? 1 : 7)
                for (const Texture texture : {Texture::hard, Texture::soft})
                    for (const RowScale scale : {RowScale::threeHalves, RowScale::twofold})
                        ASSERT_TRUE(StripsEqualWholePicture(stageCase, scale, width, height, texture, plainKernels));
}

TEST(ScaleRowStrips, EqualTheWholePictureAtEveryWidth) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        for (const StageCase& stageCase : stageCases)
            for (int32_t width = 40; width <= 260; width += 31)
                for (const RowScale scale : {RowScale::threeHalves, RowScale::twofold})
                    ASSERT_TRUE(StripsEqualWholePicture(stageCase, scale, width, 18, Texture::hard, kernels));
    });
}

TEST(ScaleRowStrips, ReadWhatFollowsInTheBufferAndNothingBehindIt) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        for (int32_t width = 1; width <= 80; ++width) {
            RowStages stages;
            stages.taps = UsualTaps();
            const DecodedPicture picture(width, 5, width, Texture::hard, 3);
            const WorkingImage actual = TestImage((3 * width) >> 1, 5, Texture::hard, 1);
            const WorkingImage expected = TestImage((3 * width) >> 1, 5, Texture::hard, 2);
            // The third plane is the one that the buffer ends with.
            const Plane& last = picture.Source().planes.third;
            RowScratch scratch;
            const Plane to{actual.Planes().luma.data, (3 * last.width) >> 1, last.height, actual.Planes().luma.stride};
            const Plane plain{expected.Planes().luma.data, to.width, to.height, to.stride};
            ScaleLumaStrips(to, last, picture.Source().end, stages, scratch, kernels);
            PlainScaleRows(plain, last, picture.Source().end, stages);
            ASSERT_TRUE(SameSamples(to, plain)) << kernels.name << ", width " << last.width;
        }
    });
}

}  // namespace
}  // namespace clarivex
