#include "algorithms/lighting.h"

#include "runtime/random.h"
#include "tests/support/test.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr int64_t longGap = 50'000'000;

/// A decoder's frame: luma of `span` levels from `base` on, chroma of `chromaSpan` levels around grey.
DecodedPicture Frame(int32_t width, int32_t height, int32_t base, int32_t span, int32_t chromaSpan, Random15& random) {
    DecodedPicture picture(width, height, (width + 1) & ~1, Texture::soft, 1);
    const auto fill = [](const Plane& plane, auto sample) {
        for (int32_t y = 0; y < plane.height; ++y)
            std::generate_n(plane.Row(y), plane.width, [&] { return static_cast<uint8_t>(sample()); });
    };
    fill(picture.Planes().luma, [&] { return base + random.Next() % span; });
    for (const Plane& chroma : {picture.Planes().second, picture.Planes().third})
        fill(chroma, [&] { return 128 - chromaSpan / 2 + (random.Next() * chromaSpan >> 15); });
    return picture;
}

/// Frames of one sample, too small for a sampled pair and just large enough, around the heights where the grid widens, and large enough
/// to lose a noise floor.
TEST(AnalyseLighting, GivesThePinnedLevelsOfEverySize) {
    const struct {
        int32_t width, height, base, span;
        float black, white;
    } cases[] = {
        {1, 1, 200, 1, 0x1p+4F, 0x1.72p+7F},
        {12, 12, 200, 1, 0x1p+4F, 0x1.72p+7F},
        {13, 13, 200, 9, 0x1.9cp+6F, 0x1.d6p+7F},
        {21, 21, 40, 150, 0x1.787334p+5F, 0x1.72p+7F},
        {64, 139, 16, 200, 0x1.5a4efep+4F, 0x1.8ab706p+7F},
        {64, 140, 16, 200, 0x1.549ba6p+4F, 0x1.8785bep+7F},
        {64, 249, 60, 150, 0x1.ea06d4p+5F, 0x1.892feap+7F},
        {64, 250, 60, 150, 0x1.e5eb86p+5F, 0x1.8a465p+7F},
        {1301, 253, 50, 150, 0x1.aabd04p+5F, 0x1.771e7cp+7F},
        {64, 64, 235, 1, 0x1.9cp+6F, 0x1.d6p+7F},
        {64, 64, 16, 1, 0x1p+4F, 0x1.72p+7F},
        {1600, 1600, 60, 150, 0x1.f980f2p+5F, 0x1.8afcd6p+7F},
    };
    for (const auto& test : cases) {
        Random15 random;
        LightingState state;
        AnalyseLighting(Frame(test.width, test.height, test.base, test.span, 8, random).Source().planes, longGap, state,
                        scalarKernels);
        EXPECT_EQ(state.trackedBlack, test.black) << test.width << " x " << test.height;
        EXPECT_EQ(state.trackedWhite, test.white) << test.width << " x " << test.height;
    }
}

TEST(AnalyseLighting, LevelsAreTakenOutrightAfterALongGap) {
    Random15 random;
    const DecodedPicture frame = Frame(64, 64, 60, 1, 1, random);
    LightingState state;
    AnalyseLighting(frame.Source().planes, 49'899'999, state, scalarKernels);
    EXPECT_LT(state.trackedBlack, 30.0F);
    AnalyseLighting(frame.Source().planes, 49'900'000, state, scalarKernels);
    EXPECT_NEAR(state.trackedBlack, 60.001, 1e-4);
}

// Levels travel through single precision many times over; every build must round them at the same places.
TEST(AnalyseLighting, FollowsTwoHundredFramesToTheLastBit) {
    Random15 random;
    LightingState state;
    LightingCorrection correction;
    for (int32_t i = 0; i < 200; ++i) {
        const DecodedPicture frame = Frame(46, 20, i * 7 % 200, 1 + i * 13 % 56, 256, random);
        correction = AnalyseLighting(frame.Source().planes, 333'333, state, scalarKernels);
    }
    EXPECT_EQ(state.trackedBlack, 0x1.004a98p+4F);
    EXPECT_EQ(state.trackedWhite, 0x1.d480a8p+7F);
    EXPECT_EQ(correction.lumaGain, 0x1.00e650p+0F);
    EXPECT_EQ(correction.lumaOffset, -0x1.312ac0p-4F);
    EXPECT_EQ(correction.chromaGainV, 0x1.098706p+0F);
    EXPECT_EQ(correction.chromaOffsetV, -0x1.30e0bcp+2F);
}

}  // namespace
}  // namespace clarivex
