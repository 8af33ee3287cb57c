#include "algorithms/working_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace clarivex {
namespace {

TEST(WorkingImage, KeepsItsBlockWhileTheSizeStays) {
    WorkingImage image;
    image.Resize(40, 20);
    EXPECT_EQ(image.Planes().luma.stride, 64);
    EXPECT_EQ(image.Planes().second.width, 20);
    EXPECT_EQ(image.Planes().owner, nullptr);
    uint8_t* spareRow = image.Planes().luma.Row(20);
    EXPECT_EQ(*spareRow, 0);
    *spareRow = 99;
    image.Resize(40, 20);
    EXPECT_EQ(image.Planes().luma.Row(20), spareRow);
    EXPECT_EQ(*spareRow, 99);

    image.Resize(42, 20);
    EXPECT_EQ(image.Planes().luma.width, 42);
    EXPECT_EQ(*image.Planes().luma.Row(20), 0);
    image.Resize(42, 21);
    EXPECT_EQ(image.Planes().luma.height, 21);
    EXPECT_EQ(image.Planes().third.height, 11);
}

TEST(WorkingImage, HoldsTheSpareRowsItPromises) {
    WorkingImage image;
    for (const int32_t height : {1, 15, 16, 17}) {
        image.Resize(1, height);
        for (const Plane& plane : {image.Planes().luma, image.Planes().second, image.Planes().third}) {
            std::fill_n(plane.Row(plane.height), 15 * plane.stride, uint8_t{1});
        }
    }
}

TEST(PrepareWorkingImage, CopiesThePictureAndLeavesTheSpareRows) {
    std::vector<uint8_t> luma(33 * 3, 10);
    std::vector<uint8_t> chroma(17 * 2, 20);
    ImagePlanes source;
    source.luma = {luma.data(), 33, 3, 33};
    source.second = {chroma.data(), 17, 2, 17};
    source.third = source.second;
    WorkingImage image;
    image.Resize(33, 3);
    *image.Planes().luma.Row(3) = 77;
    PrepareWorkingImage(image, source);
    EXPECT_EQ(image.Planes().luma.Row(2)[32], 10);
    EXPECT_EQ(image.Planes().third.Row(1)[16], 20);
    EXPECT_EQ(*image.Planes().luma.Row(3), 77);
}

TEST(PrepareWorkingImage, ReadsNothingBehindTheSourcesBuffer) {
    // Rows wide enough apart to be copied in whole units of 64, in a buffer that ends with the last visible sample.
    constexpr size_t bytes = 128 + 100;
    const auto buffer = MakeAlignedArray<uint8_t>(bytes + 64);
    std::fill_n(buffer.get(), bytes + 64, uint8_t{5});
    std::fill_n(buffer.get() + bytes, 64, uint8_t{6});
    ImagePlanes source;
    source.luma = {buffer.get(), 100, 2, 128};
    source.second = source.third = {buffer.get(), 50, 1, 128};
    WorkingImage image;
    PrepareWorkingImage(image, source, buffer.get() + bytes);
    const Plane& luma = image.Planes().luma;
    EXPECT_EQ(std::count(luma.Row(0), luma.Row(2), 6), 0);
    EXPECT_EQ(luma.Row(1)[99], 5);
}

}  // namespace
}  // namespace clarivex
