#include "engine/picture_scaler.h"

#include <gtest/gtest.h>

#include "tests/engine/plain_scalers.h"
#include "tests/support/crc32.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

struct SplitView {
    int32_t width;
    void (*scale)(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source);
    uint32_t digest;
};

template <RowScale scale>
void ScaleRows(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source) {
    RowStages stages;
    stages.scale = scale;
    stages.taps = UsualTaps();
    stages.twofoldTaps = UsualTwofoldTaps();
    scaler.ScaleHorizontal(target, source, stages, false, lumaPlane);
}

void ScaleColumns(PictureScaler& scaler, const ImagePlanes& target, const SourceImage& source) {
    ColumnStages stages;
    stages.taps = UsualTaps();
    scaler.ScaleVertical(target, source, stages, lumaPlane);
}

constexpr SplitView splitViews[] = {
    {200, ScaleRows<RowScale::threeHalves>, 0xd604f270},  // from column 96 of the source and 144 of the target on
    {200, ScaleRows<RowScale::twofold>, 0xb829482d},      // from column 96, twice as far in the target
    {200, ScaleColumns, 0x57c79810},                      // from column 96 in both
    {4, ScaleRows<RowScale::threeHalves>, 0x104d6a61},    // too narrow to be split
};

TEST(PictureScaler, ShowsTheRightPartInASplitView) {
    ScalerScratch scratch;
    PictureScaler scaler(scratch, scalarKernels, true);
    for (const SplitView& view : splitViews) {
        const WorkingImage source = TestImage(view.width, 8, Texture::soft, 1);
        const WorkingImage target = TestImage(2 * view.width, 12, Texture::hard, 2);
        view.scale(scaler, target.Planes(), SourceOf(source));
        EXPECT_EQ(Crc32(target.Planes().luma.data, BytesOf(target)), view.digest) << &view - splitViews;
    }
}

}  // namespace
}  // namespace clarivex
