// The split view of the scalers; what they make of whole pictures is seen by the pass.
#include <gtest/gtest.h>

#include <algorithm>

#include "engine/filter_plan.h"
#include "engine/picture_scaler.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

struct SplitView {
    int32_t width;
    void (*scale)(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source);
    int32_t sourceColumn;  // from which on it is enlarged
    int32_t targetColumn;  // and where that goes
};

const FilterTaps usualTaps = DesignTaps({});

template <AxisScale scale>
void ScaleRows(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source) {
    RowStages stages;
    stages.scale = scale;
    stages.taps = usualTaps.horizontal;
    stages.sleeping.twofoldTaps = DesignTwofoldTaps(usualTaps.horizontalResponse);
    scaler.ScaleHorizontal(target, source, stages, false, lumaPlane);
}

void ScaleColumns(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source) {
    ColumnStages stages;
    stages.taps = usualTaps.vertical;
    scaler.ScaleVertical(target, source, stages, lumaPlane);
}

constexpr SplitView splitViews[] = {
    {236, ScaleRows<AxisScale::threeHalves>, 96, 144},
    {236, ScaleRows<AxisScale::twofold>, 112, 224},
    {236, ScaleColumns, 112, 112},
    {4, ScaleRows<AxisScale::threeHalves>, 0, 0},  // too narrow to be split
};

ImagePlanes LumaFrom(const WorkingImage& image, int32_t column) {
    ImagePlanes planes = image.Planes();
    planes.luma.data += column;
    planes.luma.width -= column;
    return planes;
}

TEST(Scalers, ASplitViewEnlargesTheRightPartAndShowsTheFrameLeftOfIt) {
    ScalerScratch scratch;
    for (const SplitView& view : splitViews) {
        const WorkingImage source = TestImage(view.width, 8, Texture::soft, 1);
        const WorkingImage target = TestImage(2 * view.width, 12, Texture::hard, 2);
        const WorkingImage plain = TestImage(2 * view.width, 12, Texture::hard, 2);
        const PlaneView frame = source.Planes().luma;
        PictureScaler split(scratch, scalarKernels, &frame), whole(scratch, scalarKernels, nullptr);
        view.scale(split, target.Planes(), SourceOf(source));
        view.scale(whole, LumaFrom(plain, view.targetColumn), {LumaFrom(source, view.sourceColumn), source.End(), {}});
        for (int32_t y = 0; y < 12; ++y)
            for (int32_t x = 0; x < 2 * view.width; ++x) {
                const uint8_t left = y < 8 && x < frame.width ? frame.Row(std::min(y, 7))[x] : uint8_t{16};
                const uint8_t expected = x < view.targetColumn ? left : plain.Planes().luma.Row(y)[x];
                ASSERT_EQ(target.Planes().luma.Row(y)[x], expected) << &view - splitViews << ": " << x << ", " << y;
            }
    }
}

TEST(Scalers, ASplitViewOnBothAxesIsOneAfterTheOther) {
    ScalerScratch scratch;
    RowStages rows;
    rows.taps = usualTaps.horizontal;
    ColumnStages columns;
    columns.taps = usualTaps.vertical;
    const WorkingImage source = TestImage(236, 50, Texture::soft, 1), between = TestImage(354, 50, Texture::hard, 2);
    const WorkingImage target = TestImage(354, 75, Texture::hard, 3), expected = TestImage(354, 75, Texture::hard, 3);
    const PlaneView frame = source.Planes().luma;
    PictureScaler split(scratch, scalarKernels, &frame);
    split.ScaleHorizontal(between.Planes(), SourceOf(source), rows, false, lumaPlane);
    split.ScaleVertical(expected.Planes(), SourceOf(between), columns, lumaPlane);
    split.ScaleLumaBothAxes(target.Planes().luma, SourceOf(source).Luma(), rows, columns.taps);
    EXPECT_TRUE(SameSamples(target.Planes().luma, expected.Planes().luma));
}

}  // namespace
}  // namespace clarivex
