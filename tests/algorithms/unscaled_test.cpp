#include "algorithms/unscaled.h"

#include <gtest/gtest.h>

#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr DetailTaps pass{0, 0, 0, 0, 0, 0, 0, 0, 8160};
constexpr DetailTaps three{0, 0, 0, 0, 0, 0, 0, -1300, 10760, -1300};
constexpr DetailTaps five{0, 0, 0, 0, 0, 0, 85, -1364, 10718, -1364, 85};
constexpr DetailTaps eight{9, 9, 9, 9, -475, 1924, -9744, 12391, 12391, -9744, 1924, -475, 9, 9, 9, 9};

uint8_t Limited(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

int32_t Centred(int32_t sample) {
    const int32_t s = sample < 128 ? sample - 128 : std::min(sample - 127, 127);
    return 256 * s + (s & 255);
}

SharpenParams Vertical(float gainLog2) {
    SharpenParams params;
    params.baseGainLog2 = gainLog2;
    return params;
}

/// The walk sample by sample; gain is 5 · (2^gainLog2 − 1) rounded.
void EnhancePlainly(const Plane& target, const SourceImage& source, const DetailTaps& taps, int32_t gain) {
    const Plane& luma = source.planes.luma;
    const int32_t lastGroup = 4 + 4 * ((luma.width - 5) >> 2);
    if (lastGroup <= 4) return;
    const auto sample = [&](int32_t x, int32_t y) {
        const uint8_t* at = luma.Row(y) + x;
        return int32_t{at < source.end ? *at : luma.Row(y)[luma.width - 1]};
    };
    const auto vertical = [&](int32_t x, int32_t y) {
        const int32_t detail =
            static_cast<int16_t>(gain * (2 * sample(x, y) - sample(x, y - 1) - sample(x, y + 1)) + 4);
        return int32_t{Limited(sample(x, y) + (detail >> 4))};
    };
    for (int32_t y = 0; y < luma.height; ++y)
        for (int32_t x = 0; x < luma.width + luma.width % 2; ++x) {
            uint8_t& out = target.Row(y)[x];
            if (y == 0 || y == luma.height - 1) {
                out = static_cast<uint8_t>(sample(x, y));
            } else if (x < 4) {
                out = static_cast<uint8_t>(vertical(x, y));
            } else if (x >= lastGroup) {
                out = Limited((Centred(vertical(x, y)) + 0x8000) >> 8);
            } else {
                int32_t sum = x % 2 == 0 ? 4088 : 4072;
                for (int32_t k = 4; k <= 11; ++k)
                    sum += (taps[static_cast<size_t>(k)] * Centred(vertical(x + k - 8, y))) >> 16;
                out = Limited(static_cast<int16_t>(sum) >> 5);
            }
        }
}

TEST(EnhanceUnscaled, EqualsThePlainWalk) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        UnscaledScratch scratch;
        for (const DetailTaps& taps : {pass, three, five, eight})
            for (const float gain : {0.0F, 0.65F, -500.0F})
                for (int32_t width = 1; width <= 150; width += width < 48 ? 1 : 17)
                    for (const int32_t height : {1, 2, 3, 10}) {
                        if (gain == 0 && taps == pass) continue;  // copied, see below
                        const DecodedPicture picture(width, height, width, Texture::hard, 9);
                        const WorkingImage actual = TestImage(width, height, Texture::hard, 1);
                        const WorkingImage expected = TestImage(width, height, Texture::hard, 1);
                        EnhanceUnscaled(actual.Planes(), picture.Source(), taps, Vertical(gain), scratch, kernels);
                        const int32_t integerGain = gain == 0 ? 0 : gain < 0 ? -5 : 3;
                        EnhancePlainly(expected.Planes().luma, picture.Source(), taps, integerGain);
                        ASSERT_TRUE(SameSamples(actual.Planes().luma, expected.Planes().luma, (width + 1) & ~1, height))
                            << kernels.name << ", " << width << " x " << height << ", gain " << gain;
                        ASSERT_TRUE(SameSamples(actual.Planes().second, expected.Planes().second)) << "only luma";
                    }
    });
}

TEST(EnhanceUnscaled, CopiesAllPlanesWithNothingToDo) {
    UnscaledScratch scratch;
    const DecodedPicture picture(37, 11, 37, Texture::hard, 9);
    WorkingImage target;
    target.Resize(37, 11);
    EnhanceUnscaled(target.Planes(), picture.Source(), pass, {}, scratch, scalarKernels);
    EXPECT_TRUE(SamePictures(target.Planes(), picture.Source().planes));
}

}  // namespace
}  // namespace clarivex
