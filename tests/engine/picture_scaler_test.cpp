#include "engine/picture_scaler.h"

#include <gtest/gtest.h>

#include "tests/engine/plain_scalers.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

RowStages Rows() {
    RowStages stages;
    stages.taps = UsualTaps();
    return stages;
}

ColumnStages Columns() {
    ColumnStages stages;
    stages.taps = UsualTaps();
    return stages;
}

Plane PartOf(const Plane& plane, int32_t firstColumn) {
    return {plane.data + firstColumn, plane.width - firstColumn, plane.height, plane.stride};
}

TEST(PictureScaler, ShowsTheRightPartInASplitView) {
    ScalerScratch scratch;
    PictureScaler scaler(scratch, scalarKernels, true);
    const WorkingImage source = TestImage(200, 8, Texture::soft, 1);
    const WorkingImage wide = TestImage(300, 8, Texture::hard, 2);
    const WorkingImage expectedWide = TestImage(300, 8, Texture::hard, 2);
    // (200 / 2 − 4) >> 5 times 16 is 48: from column 96 of the source and 144 of the target on.
    scaler.ScaleHorizontal(wide.Planes(), SourceOf(source), Rows(), false, lumaPlane);
    PlainScaleRows(PartOf(expectedWide.Planes().luma, 144), PartOf(source.Planes().luma, 96), EndOf(source), Rows());
    EXPECT_TRUE(SameSamples(wide.Planes().luma, expectedWide.Planes().luma));

    RowStages twofold = Rows();
    twofold.scale = RowScale::twofold;
    twofold.twofoldTaps = UsualTwofoldTaps();
    const WorkingImage doubled = TestImage(400, 8, Texture::hard, 2);
    const WorkingImage expectedDoubled = TestImage(400, 8, Texture::hard, 2);
    // 200 / 2 − 4 without its low four bits is 96: from there on in the source, twice as far in the target.
    scaler.ScaleHorizontal(doubled.Planes(), SourceOf(source), twofold, false, lumaPlane);
    PlainScaleRows(PartOf(expectedDoubled.Planes().luma, 192), PartOf(source.Planes().luma, 96), EndOf(source),
                   twofold);
    EXPECT_TRUE(SameSamples(doubled.Planes().luma, expectedDoubled.Planes().luma));

    const WorkingImage tall = TestImage(200, 12, Texture::hard, 2);
    const WorkingImage expectedTall = TestImage(200, 12, Texture::hard, 2);
    // 200 / 2 − 4 without its low four bits is 96, in both.
    scaler.ScaleVertical(tall.Planes(), SourceOf(source), Columns(), lumaPlane);
    PlainScaleColumns(PartOf(expectedTall.Planes().luma, 96), PartOf(source.Planes().luma, 96), EndOf(source),
                      Columns());
    EXPECT_TRUE(SameSamples(tall.Planes().luma, expectedTall.Planes().luma));

    const WorkingImage narrow = TestImage(4, 8, Texture::soft, 1);
    WorkingImage whole;
    scaler.ScaleHorizontalPlane(whole, SourceOf(narrow), Rows(), false, lumaPlane);
    const WorkingImage expected = TestImage(6, 8, Texture::hard, 2);
    PlainScaleRows(expected.Planes().luma, narrow.Planes().luma, EndOf(narrow), Rows());
    EXPECT_TRUE(SameSamples(whole.Planes().luma, expected.Planes().luma)) << "too narrow to be split";
}

}  // namespace
}  // namespace clarivex
