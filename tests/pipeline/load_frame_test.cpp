#include "pipeline/load_frame.h"

#include <gtest/gtest.h>

#include <vector>

#include "algorithms/working_image.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

void SplitPlainly(const uint8_t* packed, uint8_t* luma, uint8_t* u, uint8_t* v, int32_t pairs) {
    for (int32_t i = 0; i < pairs; ++i) {
        luma[2 * i] = packed[4 * i];
        luma[2 * i + 1] = packed[4 * i + 2];
        if (u != nullptr) {
            u[i] = packed[4 * i + 1];
            v[i] = packed[4 * i + 3];
        }
    }
}

KernelTable PlainKernels() {
    KernelTable kernels{};
    kernels.splitPackedRow = SplitPlainly;
    return kernels;
}

// A packed picture in a buffer that ends with its last pair, and its planes.
class SplitPicture {
public:
    SplitPicture(int32_t width, int32_t height) : stride((width + 1) / 2 * 4 + 3), bytes(Bytes(width, height)) {
        for (size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<uint8_t>(i * 7 + i / 251);
        }
        image.Resize(width, height);
        LoadFrame({bytes.data(), width, height, stride}, image.Planes(), PlainKernels());
    }

    int Packed(int32_t x, int32_t y) const { return bytes[static_cast<size_t>(y * stride + x)]; }
    const ImagePlanes& Planes() const { return image.Planes(); }

private:
    size_t Bytes(int32_t width, int32_t height) const {
        return static_cast<size_t>((height - 1) * stride + (width + 1) / 2 * 4);
    }

    int32_t stride;
    std::vector<uint8_t> bytes;
    WorkingImage image;
};

TEST(LoadFrame, TakesLumaOfEveryRowAndChromaOfEveryOther) {
    const SplitPicture picture(36, 9);
    for (int32_t y = 0; y < 9; ++y) {
        for (int32_t x = 0; x < 36; ++x) {
            ASSERT_EQ(picture.Planes().luma.Row(y)[x], picture.Packed(2 * x, y));
        }
    }
    for (int32_t y = 0; y < 5; ++y) {
        for (int32_t x = 0; x < 18; ++x) {
            ASSERT_EQ(picture.Planes().third.Row(y)[x], picture.Packed(4 * x + 1, 2 * y));
            ASSERT_EQ(picture.Planes().second.Row(y)[x], picture.Packed(4 * x + 3, 2 * y));
        }
    }
}

TEST(LoadFrame, PadsLumaRowsWithTheirLastPair) {
    for (int32_t width = 32; width <= 41; ++width) {
        const SplitPicture picture(width, 3);
        const int32_t even = (width + 1) & ~1;
        const int32_t padded = (width + 7) & ~7;
        for (int32_t y = 0; y < 3; ++y) {
            const uint8_t* row = picture.Planes().luma.Row(y);
            for (int32_t x = even; x < padded; ++x) {
                ASSERT_EQ(row[x], picture.Packed(2 * (even - 2 + x % 2), y)) << width << ", " << x;
            }
        }
    }
}

}  // namespace
}  // namespace clarivex
