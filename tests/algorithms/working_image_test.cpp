#include "algorithms/working_image.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

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
