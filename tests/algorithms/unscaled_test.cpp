#include "algorithms/unscaled.h"

#include <gtest/gtest.h>

#include "tests/support/crc32.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr DetailTaps pass{0, 0, 0, 0, 0, 0, 0, 0, 8160};

struct Walk {
    DetailTaps taps;
    float verticalGain;
    uint32_t digest;
};

/// Taps, the vertical gain and the digest of all pictures.
constexpr Walk walks[] = {
    {pass, 0.0F, 0x0cea70fe},  // a copy of all planes
    {pass, 0.65F, 0x39e11641},
    {pass, -500.0F, 0xf7bb77ff},
    {{0, 0, 0, 0, 0, 0, 0, -1300, 10760, -1300}, 0.0F, 0xa0e46706},
    {{0, 0, 0, 0, 0, 0, 85, -1364, 10718, -1364, 85}, 0.65F, 0xd923f8c9},
    {{9, 9, 9, 9, -475, 1924, -9744, 12391, 12391, -9744, 1924, -475, 9, 9, 9, 9}, -500.0F, 0xca78dc2d},
};

uint32_t DigestOf(const Walk& walk, const KernelTable& kernels) {
    SharpenParams vertical;
    vertical.baseGainLog2 = walk.verticalGain;
    UnscaledScratch scratch;
    uint32_t digest = 0;
    for (int32_t width = 1; width <= 150; width += width < 48 ? 1 : 17)
        for (const int32_t height : {1, 2, 3, 10}) {
            const DecodedPicture picture(width, height, width, Texture::hard, 9);
            const WorkingImage target = TestImage(width, height, Texture::hard, 1);
            EnhanceUnscaled(target.Planes(), picture.Source(), walk.taps, vertical, scratch, kernels);
            digest = Crc32(target.Planes().luma.data, BytesOf(target), digest);
        }
    return digest;
}

TEST(EnhanceUnscaled, GivesThePinnedSamplesAtEveryWidth) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        for (const Walk& walk : walks)
            EXPECT_EQ(DigestOf(walk, kernels), walk.digest) << kernels.name << ", walk " << &walk - walks;
    });
}

}  // namespace
}  // namespace clarivex
