// Media buffer layouts against their plain description, for even and odd sizes, with a guard page behind every buffer.
#include "host/buffer_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/guarded_pages.h"

namespace clarivex {
namespace {

std::vector<uint8_t> RandomBytes(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(count);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
}

/// A sample of a Y4M plane of this width.
uint8_t At(std::span<const uint8_t> plane, int32_t width, int32_t x, int32_t y) {
    return plane[static_cast<size_t>(width) * static_cast<size_t>(y) + static_cast<size_t>(x)];
}

const std::vector<PictureSize> sizes = {{16, 16}, {17, 16}, {16, 17}, {17, 17}, {34, 19},
                                        {33, 2},  {1, 1},   {2, 1},   {1, 2}};

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

TEST(BufferLayout, OddHeightGetsTheEarlierPlanesLastRowFromAbove) {
    const PictureSize size{4, 5};
    const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 2);
    const FilledBuffer filled(SampleFormat::yv12, size, {size, picture});
    const auto [luma, u, v] = filled.planes;
    const auto [givenLuma, givenU, givenV] = PlanarPicture{size, picture}.Planes();
    EXPECT_TRUE(std::ranges::equal(luma, givenLuma));
    EXPECT_TRUE(std::ranges::equal(u, givenU));
    EXPECT_TRUE(std::ranges::equal(v.first(4), givenV.first(4)));
    EXPECT_TRUE(std::ranges::equal(v.subspan(4, 2), givenV.subspan(2, 2)));
}

TEST(BufferLayout, PicturesStayInsideAndPackedOnesRepeatChromaRowsAndTheOddColumn) {
    for (const PictureSize size : sizes) {
        const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 4);
        for (const SampleFormat planar : {SampleFormat::yv12, SampleFormat::iyuv})
            EXPECT_EQ(FilledBuffer(planar, size, {size, picture}).planes[0].size(), size.LumaBytes());
        const FilledBuffer filled(SampleFormat::yuy2, size, {size, picture});
        ASSERT_EQ(filled.bytes.size(), static_cast<size_t>((2 * size.width + 3) / 4 * 4 * size.height));
        const auto [luma, u, v] = filled.planes;
        const auto [givenLuma, givenU, givenV] = PlanarPicture{size, picture}.Planes();
        EXPECT_TRUE(std::ranges::equal(luma, givenLuma));
        const int32_t width = size.ChromaWidth();
        for (int32_t y = 0; y < size.height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                ASSERT_EQ(At(u, width, x, y), At(givenU, width, x, y / 2)) << size.width << "x" << size.height;
                ASSERT_EQ(At(v, width, x, y), At(givenV, width, x, y / 2)) << size.width << "x" << size.height;
            }
        EXPECT_TRUE(size.width % 2 == 0 || filled.bytes.end()[-4] == filled.bytes.end()[-2]);
    }
}

TEST(BufferLayout, ASmallerPictureStandsAtTheUpperLeftOverBlack) {
    const PictureSize size{17, 18}, large{32, 27};
    const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 5);
    const auto [givenLuma, givenU, givenV] = PlanarPicture{size, picture}.Planes();
    for (const SampleFormat format : {SampleFormat::yv12, SampleFormat::iyuv, SampleFormat::yuy2}) {
        const FilledBuffer filled(format, large, {size, picture});
        const auto [luma, u, v] = filled.planes;
        for (int32_t y = 0; y < large.height; ++y)
            for (int32_t x = 0; x < large.width; ++x) {
                const bool packed = format == SampleFormat::yuy2;
                const bool inside = x < size.width && y < size.height;
                const bool repeated = packed && x == size.width && y < size.height;  // the odd column's pair
                const int expected = inside ? At(givenLuma, 17, x, y) : repeated ? At(givenLuma, 17, 16, y) : 16;
                ASSERT_EQ(At(luma, 32, x, y), expected) << "format " << int(format) << ", " << x << ", " << y;
            }
        const int32_t rows = format == SampleFormat::yuy2 ? large.height : large.ChromaHeight();
        const int32_t rowStep = format == SampleFormat::yuy2 ? 2 : 1;
        for (int32_t y = 0; y < rows; ++y)
            for (int32_t x = 0; x < 16; ++x) {
                const bool inside = x < 9 && y / rowStep < 9;
                ASSERT_EQ(At(u, 16, x, y), inside ? At(givenU, 9, x, y / rowStep) : 128) << "format " << int(format);
                ASSERT_EQ(At(v, 16, x, y), inside ? At(givenV, 9, x, y / rowStep) : 128) << "format " << int(format);
            }
    }
}

}  // namespace
}  // namespace clarivex
