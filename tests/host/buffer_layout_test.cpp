// Media buffer layouts against their plain description, for even and odd sizes, with guard bytes around every buffer.
#include "host/buffer_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/fake_buffers.h"

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

TEST(BufferLayout, PlanarPlacesAreThoseOfTheMediaTypes) {
    const PictureSize size{6, 4};
    const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 1);
    const auto [luma, u, v] = PlanarPicture{size, picture}.Planes();
    std::vector<uint8_t> yv12(BufferLayout(SampleFormat::yv12, size).Bytes()), iyuv(yv12);
    BufferLayout(SampleFormat::yv12, size).Put({size, picture}, yv12);
    BufferLayout(SampleFormat::iyuv, size).Put({size, picture}, iyuv);
    EXPECT_EQ(iyuv, picture);
    std::vector<uint8_t> expected(luma.begin(), luma.end());
    expected.insert(expected.end(), v.begin(), v.end());
    expected.insert(expected.end(), u.begin(), u.end());
    EXPECT_EQ(yv12, expected);
}

TEST(BufferLayout, OddPlanesOverlapAndTheLaterOneWins) {
    // 3 x 3: luma 9 bytes, chroma rows of 2 bytes one byte apart, planes one row apart.
    const PictureSize size{3, 3};
    const std::vector<uint8_t> picture = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 21, 22, 23, 24};
    BufferLayout layout(SampleFormat::iyuv, size);
    ASSERT_EQ(layout.Bytes(), 13u);
    std::vector<uint8_t> buffer(layout.Bytes());
    layout.Put({size, picture}, buffer);
    EXPECT_EQ(buffer, (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 21, 23, 24}));
}

TEST(BufferLayout, OddHeightGetsTheEarlierPlanesLastRowFromAbove) {
    const PictureSize size{4, 5};
    const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 2);
    const BufferLayout layout(SampleFormat::yv12, size);
    std::vector<uint8_t> buffer(layout.Bytes()), scratch;
    layout.Put({size, picture}, buffer);
    const auto [luma, u, v] = layout.Get(buffer, scratch);
    const auto [givenLuma, givenU, givenV] = PlanarPicture{size, picture}.Planes();
    EXPECT_TRUE(std::ranges::equal(luma, givenLuma));
    EXPECT_TRUE(std::ranges::equal(u, givenU));
    EXPECT_TRUE(std::ranges::equal(v.first(4), givenV.first(4)));
    EXPECT_TRUE(std::ranges::equal(v.subspan(4, 2), givenV.subspan(2, 2)));
}

TEST(BufferLayout, PackedPicturesRepeatChromaRowsAndTheOddColumn) {
    for (const PictureSize size : sizes) {
        const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 4);
        const BufferLayout layout(SampleFormat::yuy2, size);
        ASSERT_EQ(layout.Bytes(), static_cast<size_t>((2 * size.width + 3) / 4 * 4 * size.height));
        std::vector<uint8_t> buffer(layout.Bytes()), scratch;
        layout.Put({size, picture}, buffer);
        const auto [luma, u, v] = layout.Get(buffer, scratch);
        const auto [givenLuma, givenU, givenV] = PlanarPicture{size, picture}.Planes();
        EXPECT_TRUE(std::ranges::equal(luma, givenLuma));
        const int32_t width = size.ChromaWidth();
        for (int32_t y = 0; y < size.height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                ASSERT_EQ(At(u, width, x, y), At(givenU, width, x, y / 2)) << size.width << "x" << size.height;
                ASSERT_EQ(At(v, width, x, y), At(givenV, width, x, y / 2)) << size.width << "x" << size.height;
            }
        if (size.width % 2 != 0) {
            const size_t lastPair = layout.Bytes() - 4;
            EXPECT_EQ(buffer[lastPair], buffer[lastPair + 2]);
        }
    }
}

TEST(BufferLayout, ASmallerPictureStandsAtTheUpperLeftOverBlack) {
    const PictureSize size{17, 18}, large{32, 27};
    const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 5);
    const auto [givenLuma, givenU, givenV] = PlanarPicture{size, picture}.Planes();
    for (const SampleFormat format : {SampleFormat::yv12, SampleFormat::iyuv, SampleFormat::yuy2}) {
        const BufferLayout layout(format, large);
        std::vector<uint8_t> buffer(layout.Bytes(), 77), scratch;
        layout.Put({size, picture}, buffer);
        const auto [luma, u, v] = layout.Get(buffer, scratch);
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

TEST(BufferLayout, NothingOutsideTheBufferIsTouched) {
    for (const SampleFormat format : {SampleFormat::yv12, SampleFormat::iyuv, SampleFormat::yuy2})
        for (const PictureSize size : sizes) {
            const BufferLayout layout(format, size);
            FakeBuffer buffer(layout.Bytes());
            const std::vector<uint8_t> picture = RandomBytes(size.PlanarBytes(), 6);
            layout.Put({size, picture}, buffer.Bytes());
            const std::vector<uint8_t> exact(buffer.Bytes().begin(), buffer.Bytes().end());  // reads behind it are seen
            std::vector<uint8_t> scratch;
            const PicturePlanes planes = layout.Get(exact, scratch);
            EXPECT_EQ(planes[0].size(), size.LumaBytes());
            EXPECT_TRUE(buffer.GuardsIntact()) << "format " << int(format) << ", " << size.width << "x" << size.height;
        }
}

}  // namespace
}  // namespace clarivex
