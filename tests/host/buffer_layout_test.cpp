// Media buffer layouts against their plain description, for even and odd sizes, with a guard page behind every buffer.
#include "host/buffer_layout.h"

#include <gtest/gtest.h>

#include <numeric>
#include <utility>

#include "tests/support/guarded_pages.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

/// A sample of a Y4M plane of this width.
uint8_t At(std::span<const uint8_t> plane, int32_t width, int32_t x, int32_t y) {
    return plane[static_cast<size_t>(width) * static_cast<size_t>(y) + static_cast<size_t>(x)];
}

/// Of a picture and of the layout that it stands in.
const std::pair<PictureSize, PictureSize> sizes[] = {
    {{16, 16}, {16, 16}}, {{17, 16}, {17, 16}}, {{16, 17}, {16, 17}}, {{34, 19}, {34, 19}}, {{33, 2}, {33, 2}},
    {{1, 1}, {1, 1}},     {{2, 1}, {2, 1}},     {{1, 2}, {1, 2}},     {{17, 18}, {32, 27}}, {{17, 27}, {32, 27}}};

/// The buffer of a layout that a picture was put into. Nothing outside it is touched, and what is read out of it again
/// lies in `scratch` or in the buffer itself.
struct FilledBuffer {
    FilledBuffer(SampleFormat format, PictureSize layoutSize, const PlanarPicture& picture)
        : layout(format, layoutSize) {
        const GuardedPages pages(layout.Bytes());
        const std::span<uint8_t> guarded = pages.Last(layout.Bytes());
        layout.Put(picture, guarded);
        bytes.assign(guarded.begin(), guarded.end());  // exactly sized: reads behind it are seen
        planes = layout.Get(bytes, scratch);
    }

    BufferLayout layout;
    std::vector<uint8_t> bytes, scratch;
    PicturePlanes planes;
};

TEST(BufferLayout, PlanarPlacesAreThoseOfTheMediaTypes) {
    const PictureSize size{2, 4};
    const std::vector<uint8_t> picture = {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 21, 22};
    EXPECT_EQ(FilledBuffer(SampleFormat::iyuv, size, {size, picture}).bytes, picture);
    EXPECT_EQ(FilledBuffer(SampleFormat::yv12, size, {size, picture}).bytes,
              (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 21, 22, 11, 12}));
}

TEST(BufferLayout, OddPlanesOverlapAndTheLaterOneWins) {
    // 3 x 3: luma 9 bytes, chroma rows of 2 bytes one byte apart, planes one row apart.
    const PictureSize size{3, 3};
    const std::vector<uint8_t> picture = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 21, 22, 23, 24};
    EXPECT_EQ(FilledBuffer(SampleFormat::iyuv, size, {size, picture}).bytes,
              (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 21, 23, 24}));
}

/// A plane of a picture that stands in a layout at least as large, whose rows do not overlap.
void ExpectPlane(const FilledBuffer& filled, SampleFormat format, const PlanarPicture& picture, size_t plane) {
    const PictureSize size = picture.size, large = filled.layout.Size();
    const bool packed = format == SampleFormat::yuy2;
    const int32_t part = plane == 0 ? 1 : 2, rowStep = packed ? part : 1;
    const int32_t width = (size.width + part - 1) / part, height = (size.height + part - 1) / part;
    const int32_t columns = (large.width + part - 1) / part;
    const int32_t rows = packed ? large.height : (large.height + part - 1) / part;
    const bool lacksItsLastRow = plane == (format == SampleFormat::yv12 ? 2U : 1U) && large.height % 2 != 0 && !packed;
    if (lacksItsLastRow && rows == 1) return;
    for (int32_t y = 0; y < rows; ++y)
        for (int32_t x = 0; x < columns; ++x) {
            const int32_t row = (lacksItsLastRow && y == rows - 1 ? y - 1 : y) / rowStep;
            const int32_t column = packed && plane == 0 && x == width && width % 2 != 0 ? x - 1 : x;  // its pair
            const int black = plane == 0 ? 16 : 128;
            ASSERT_EQ(column < width && row < height ? At(picture.Planes()[plane], width, column, row) : black,
                      At(filled.planes[plane], columns, x, y))
                << "format " << int(format) << ", plane " << plane << ", " << x << ", " << y;
        }
}

TEST(BufferLayout, PicturesStandAtTheUpperLeftOverBlackAndNothingIsTouchedOutside) {
    for (const auto& [size, large] : sizes)
        for (const SampleFormat format : {SampleFormat::yv12, SampleFormat::iyuv, SampleFormat::yuy2}) {
            std::vector<uint8_t> samples(size.PlanarBytes());
            std::iota(samples.begin(), samples.end(), uint8_t{1});
            const PlanarPicture picture{size, samples};
            const FilledBuffer filled(format, large, picture);
            const bool overlaps = format != SampleFormat::yuy2 && large.width % 2 != 0;
            for (size_t plane = 0; plane < (overlaps ? 1 : 3); ++plane) ExpectPlane(filled, format, picture, plane);
        }
}

}  // namespace
}  // namespace clarivex
