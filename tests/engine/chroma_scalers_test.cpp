#include "engine/chroma_scalers.h"

#include <gtest/gtest.h>

#include "tests/engine/plain_scalers.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

TEST(ScaleChromaRows, InterpolatesOnBothGrids) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        SlackRow<uint8_t> scratch;
        for (const bool chromaOdd : {false, true})
            for (int32_t width = 1; width <= 140; width += width < 40 ? 1 : 9) {
                const DecodedPicture picture(2 * width, 6, 2 * width, Texture::hard, 5);
                const Plane& source = picture.Source().planes.third;
                const int32_t columns = 3 * ((width + 1) / 2);
                const WorkingImage actual = TestImage(columns, 3, Texture::hard, 1);
                const WorkingImage expected = TestImage(columns, 3, Texture::hard, 1);
                ScaleChromaRows(actual.Planes().luma, source, chromaOdd, scratch, kernels);
                PlainScaleChromaRows(expected.Planes().luma, source, chromaOdd);
                // Spare columns too: nothing behind the last triple is written.
                ASSERT_TRUE(SameSamples(actual.Planes().luma, expected.Planes().luma, actual.Planes().luma.stride, 3))
                    << kernels.name << ", width " << width << ", odd " << chromaOdd;
            }
    });
}

TEST(ScaleChromaRows, StopsAtTheStride) {
    const WorkingImage source = TestImage(43, 2, Texture::hard, 1);
    const WorkingImage target = TestImage(64, 2, Texture::hard, 2);
    const WorkingImage before = TestImage(64, 2, Texture::hard, 2);
    SlackRow<uint8_t> scratch;
    ScaleChromaRows({target.Planes().luma.data, 64, 1, 64}, {source.Planes().luma.data, 43, 1, 64}, false, scratch,
                    scalarKernels);
    EXPECT_TRUE(SameSamples({target.Planes().luma.Row(1), 64, 1, 64}, {before.Planes().luma.Row(1), 64, 1, 64}));
}

TEST(ScaleChromaColumns, InterpolatesAndEndsWithTheLastRow) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        SlackRow<uint8_t> scratch;
        for (const int32_t width : {1, 2, 3, 5, 33, 70})
            for (int32_t height = 1; height <= 19; ++height) {
                const DecodedPicture picture(2 * width, 2 * height, 2 * width + 4, Texture::hard, 7);
                const Plane& source = picture.Source().planes.third;
                const int32_t rows = height < 2 ? 1 : height / 2 * 3 + height % 2 * 2;
                const WorkingImage actual = TestImage(width, rows, Texture::hard, 1);
                const WorkingImage expected = TestImage(width, rows, Texture::hard, 1);
                ScaleChromaColumns(actual.Planes().luma, source, picture.Source().end, scratch, kernels);
                PlainScaleChromaColumns(expected.Planes().luma, source);
                ASSERT_TRUE(SameSamples(actual.Planes().luma, expected.Planes().luma, width, rows + 1))
                    << kernels.name << ", " << width << " x " << height;
            }
    });
}

TEST(ScaleChromaColumns, LeavesOutRowsThatTheTargetHasNoPlaceFor) {
    const WorkingImage source = TestImage(8, 5, Texture::hard, 1);
    const WorkingImage target = TestImage(8, 16, Texture::hard, 2);
    const WorkingImage before = TestImage(8, 16, Texture::hard, 2);
    const Plane& luma = target.Planes().luma;
    SlackRow<uint8_t> scratch;
    ScaleChromaColumns({luma.data, 8, 6, luma.stride}, source.Planes().luma, EndOf(source), scratch, scalarKernels);
    EXPECT_TRUE(SameSamples({luma.Row(6), 8, 4, 64}, {before.Planes().luma.Row(6), 8, 4, 64}));
}

TEST(DoubleChroma, InterpolatesOnBothGridsAndBothAxes) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        SlackRow<uint8_t> scratch;
        for (const bool chromaOdd : {false, true})
            for (int32_t width = 1; width <= 140; width += width < 40 ? 1 : 9) {
                const DecodedPicture picture(2 * width, 2 * (1 + width % 7), 2 * width, Texture::hard, 5);
                const Plane& source = picture.Source().planes.third;
                const WorkingImage actual = TestImage(2 * width, 2 * source.height, Texture::hard, 1);
                const WorkingImage expected = TestImage(2 * width, 2 * source.height, Texture::hard, 1);
                const Plane& to = actual.Planes().luma;
                const Plane& plain = expected.Planes().luma;
                DoubleChromaRows(to, source, chromaOdd, scratch, kernels);
                PlainDoubleChromaRows(plain, source, chromaOdd);
                ASSERT_TRUE(SameSamples(to, plain, to.stride, to.height)) << "rows, " << width << ' ' << chromaOdd;
                DoubleChromaColumns(to, source, chromaOdd, kernels);
                PlainDoubleChromaColumns(plain, source, chromaOdd);
                ASSERT_TRUE(SameSamples(to, plain, to.stride, to.height)) << "columns, " << width << ' ' << chromaOdd;
            }
    });
}

TEST(DoubleChroma, StaysInsideItsTarget) {
    const WorkingImage source = TestImage(33, 5, Texture::hard, 1);
    const WorkingImage target = TestImage(64, 12, Texture::hard, 2);
    const WorkingImage before = TestImage(64, 12, Texture::hard, 2);
    const Plane& luma = target.Planes().luma;
    SlackRow<uint8_t> scratch;
    DoubleChromaRows({luma.data, 64, 5, 64}, {source.Planes().luma.data, 33, 5, 64}, false, scratch, scalarKernels);
    DoubleChromaColumns({luma.data, 64, 9, 64}, source.Planes().luma, true, scalarKernels);
    EXPECT_TRUE(SameSamples({luma.Row(9), 64, 3, 64}, {before.Planes().luma.Row(9), 64, 3, 64}));
}

}  // namespace
}  // namespace clarivex
