#include "pipeline/load_frame.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "algorithms/working_image.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

TEST(LoadFrame, SplitsPairsAndContinuesTheLastOne) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        std::mt19937 random(3);
        for (const int32_t width : {1, 2, 7, 8, 33, 50, 61, 131})
            for (const int32_t height : {1, 2, 5}) {
                const int32_t pairs = (width + 1) / 2;
                const int32_t stride = 4 * pairs + 8;
                std::vector<uint8_t> packed(static_cast<size_t>(stride * height - 8));
                for (uint8_t& byte : packed) byte = static_cast<uint8_t>(random());
                WorkingImage image;
                image.Resize(width, height);
                LoadFrame({packed.data(), width, height, stride}, image.Planes(), kernels);
                const auto& [luma, second, third, owner] = image.Planes();
                for (int32_t y = 0; y < height; ++y)
                    for (int32_t x = 0; x < (width + 7) / 8 * 8; ++x) {
                        const int32_t pair = std::min(x / 2, pairs - 1);
                        const uint8_t* group = &packed[static_cast<size_t>(y * stride + 4 * pair)];
                        const uint8_t* above = group - y % 2 * stride;  // the pair of rows has its first row's chroma
                        ASSERT_EQ(luma.Row(y)[x], group[x % 2 * 2]) << kernels.name << ' ' << width << ": " << x;
                        ASSERT_EQ(third.Row(y / 2)[x / 2], above[1]) << kernels.name << ' ' << width << ": " << x;
                        ASSERT_EQ(second.Row(y / 2)[x / 2], above[3]) << kernels.name << ' ' << width << ": " << x;
                    }
            }
    });
}

}  // namespace
}  // namespace clarivex
