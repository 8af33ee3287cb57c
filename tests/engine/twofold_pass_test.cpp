// Frames through the modes that double a picture, against its stages one after the other.
#include <gtest/gtest.h>

#include "engine/enhancement_pass.h"
#include "engine/stage_plans.h"
#include "engine/strength.h"
#include "tests/engine/plain_scalers.h"
#include "tests/support/memory_count.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

class TwofoldPass : public testing::Test {
protected:
    int32_t Run(ScaleModes modes, int32_t columnsFirst, const SourceImage& source) {
        engine.horizontalMode = modes.horizontal;
        engine.verticalMode = modes.vertical;
        engine.verticalFirst = columnsFirst;
        engine.filtersDirty = 1;
        return EnhancementPass(engine, frame, source, {&image, nullptr}, aspect, info, lumaPlane, *kernels);
    }

    PostFilter FilterOf(const SourceImage& source) const {
        const Plane& luma = source.planes.luma;
        return DesignPostFilter(engine, StrengthOf(engine.sharpness, luma.width, luma.height), 2);
    }

    EnhancementEngine engine;
    FrameRecord frame;
    WorkingImage image;
    float aspect = 1.0F;
    FrameInfo info;
    const KernelTable* kernels = &scalarKernels;
};

struct Size {
    int32_t width, height;
};

constexpr Size sizes[] = {{40, 20}, {41, 21}, {43, 17}, {9, 4}, {77, 34}};

TEST_F(TwofoldPass, MixedModesAreTheirStagesInARow) {
    ForEachRunnableTable([&](const KernelTable& table) {
        kernels = &table;
        for (const bool chromaOdd : {true, false})
            for (const Size& size : sizes)
                for (const int32_t columnsFirst : {0, 1}) {
                    engine.sharpness = -1.5F;
                    engine.filterShapes[2] = chromaOdd ? 1 : 0;
                    const DecodedPicture picture(size.width, size.height, size.width + 2, Texture::soft, 4);
                    const SourceImage source = picture.Source();
                    ASSERT_EQ(Run({2, 1}, columnsFirst, source), 1);
                    const RowStages rows = PlanTwofoldRows(engine, FilterOf(source));
                    const ColumnStages columns = PlanColumns(engine);
                    const int32_t height = 3 * size.height / 2;
                    const WorkingImage half = columnsFirst != 0
                                                  ? TestImage(size.width, height, Texture::hard, 1)
                                                  : TestImage(2 * size.width, size.height, Texture::hard, 1);
                    const WorkingImage expected = TestImage(2 * size.width, height, Texture::hard, 2);
                    const ImagePlanes& between = half.Planes();
                    const ImagePlanes& to = expected.Planes();
                    const auto scaleChroma = [&](const Plane& out, const Plane& middle, const Plane& in) {
                        if (columnsFirst != 0) {
                            PlainScaleChromaColumns(middle, in);
                            PlainDoubleChromaRows(out, middle, chromaOdd);
                        } else {
                            PlainDoubleChromaRows(middle, in, chromaOdd);
                            PlainScaleChromaColumns(out, middle);
                        }
                    };
                    if (columnsFirst != 0) {
                        PlainScaleColumns(between.luma, source.planes.luma, source.end, columns);
                        PlainScaleRows(to.luma, between.luma, EndOf(half), rows);
                    } else {
                        PlainScaleRows(between.luma, source.planes.luma, source.end, rows);
                        PlainScaleColumns(to.luma, between.luma, EndOf(half), columns);
                    }
                    scaleChroma(to.second, between.second, source.planes.second);
                    scaleChroma(to.third, between.third, source.planes.third);
                    ASSERT_TRUE(SamePictures(image.Planes(), to))
                        << table.name << ", " << size.width << " x " << size.height << ", odd " << chromaOdd
                        << ", columns first " << columnsFirst;
                }
    });
}

TEST_F(TwofoldPass, DoublesBothAxes) {
    for (const Size& size : {Size{40, 20}, {41, 21}, {5, 3}}) {
        engine.sharpness = -2.5F;
        const DecodedPicture picture(size.width, size.height, size.width + 2, Texture::soft, 4);
        const ImagePlanes& from = picture.Source().planes;
        ASSERT_EQ(Run({2, 2}, 0, picture.Source()), 1);
        const WorkingImage expected = TestImage(2 * size.width, 2 * size.height, Texture::hard, 2);
        const WorkingImage half = TestImage(2 * size.width + 2, size.height, Texture::hard, 3);
        PlainScaleBothTwice(expected.Planes().luma, from.luma, PlanWide(engine, FilterOf(picture.Source())));
        const auto doubleChroma = [&](const Plane& to, const Plane& in) {
            const Plane between{half.Planes().second.data, 2 * in.width, in.height, half.Planes().second.stride};
            PlainDoubleChromaRows(between, in, true);
            PlainDoubleChromaColumns(to, between, true);
        };
        doubleChroma(expected.Planes().second, from.second);
        doubleChroma(expected.Planes().third, from.third);
        EXPECT_TRUE(SamePictures(image.Planes(), expected.Planes())) << size.width << " x " << size.height;
    }
}

TEST_F(TwofoldPass, ReportsSizeAspectAndTime) {
    const DecodedPicture picture(41, 21, 42, Texture::soft, 1);
    EXPECT_EQ(Run({2, 1}, 1, picture.Source()), 1);
    EXPECT_EQ(info.writtenWidth, 82);
    EXPECT_EQ(info.writtenHeight, 31);
    EXPECT_FLOAT_EQ(aspect, 4.0F / 3.0F);
    EXPECT_EQ(engine.timing.Figures(TimingClass::twofoldRows).sampleCount, 1);
    aspect = 1.0F;
    EXPECT_EQ(Run({2, 2}, 0, picture.Source()), 1);
    EXPECT_EQ(info.writtenWidth, 82);
    EXPECT_EQ(info.writtenHeight, 42);
    EXPECT_FLOAT_EQ(aspect, 1.0F);
    EXPECT_EQ(engine.timing.Figures(TimingClass::twofoldRows).sampleCount, 1);
    EXPECT_EQ(info.noiseAmplitude, 0.75F);
}

TEST_F(TwofoldPass, LeavesLumaAloneThatIsTooNarrowForDoubledRows) {
    const DecodedPicture picture(8, 12, 8, Texture::soft, 1);
    for (const int32_t columnsFirst : {0, 1}) {
        image = TestImage(16, 18, Texture::hard, 2);
        const WorkingImage before = TestImage(16, 18, Texture::hard, 2);
        EXPECT_EQ(Run({2, 1}, columnsFirst, picture.Source()), 1);
        EXPECT_EQ(info.writtenWidth, 0);
        EXPECT_TRUE(SameSamples(image.Planes().luma, before.Planes().luma));
        EXPECT_FALSE(SameSamples(image.Planes().third, before.Planes().third));
    }
}

TEST_F(TwofoldPass, AllocatesNothingFromTheSecondFrameOn) {
    engine.noiseReduction = 3.0F;
    engine.noiseStagesH = engine.noiseStagesV = 2;
    const DecodedPicture picture(64, 48, 64, Texture::soft, 1);
    for (const auto& [modes, columnsFirst] : {std::pair{ScaleModes{2, 1}, 0}, {{2, 1}, 1}, {{2, 2}, 0}}) {
        Run(modes, columnsFirst, picture.Source());
        const MemoryCount count;
        Run(modes, columnsFirst, picture.Source());
        EXPECT_EQ(count.Attempts(), 0) << modes.vertical << ' ' << columnsFirst;
    }
}

}  // namespace
}  // namespace clarivex
