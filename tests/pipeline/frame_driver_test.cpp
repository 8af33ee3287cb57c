#include "pipeline/frame_driver.h"

#include <gtest/gtest.h>

#include "tests/support/synthetic_video.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

TEST(StrengthOfSlider, CompressesTheLowerEnd) {
    EXPECT_EQ(StrengthOfSlider(0), 0);
    EXPECT_NEAR(StrengthOfSlider(0.5F), 0.316439152, 1e-6);
    EXPECT_NEAR(StrengthOfSlider(1), 0.795536458, 1e-6);
    EXPECT_NEAR(StrengthOfSlider(1.5F), 1.3641479, 1e-6);
    EXPECT_EQ(StrengthOfSlider(2), 2);
    EXPECT_EQ(StrengthOfSlider(3.5F), 3.5F);
}

class Driver : public testing::Test {
protected:
    void Enhance(SyntheticVideo& video) {
        video.NextFrame();
        FrameLayout layout;
        ASSERT_EQ(LayOutFrame(video.request, video.Output(), video.Input(), layout), S_OK);
        FrameDriver(engine, noise, overlay, scalarKernels, workspace).Enhance(video.request, layout);
    }

    EnhancementEngine engine;
    NoiseTable noise;
    OverlayTiles overlay;
    FrameWorkspace workspace;
};

TEST_F(Driver, WritesTheSettingsOfEachFrame) {
    SyntheticVideo video(PixelFormat::yv12, 64, 48, true);
    engine.ditherGain = 1.0F;
    Enhance(video);
    EXPECT_EQ(engine.horizontalMode, 1);
    EXPECT_EQ(engine.verticalMode, 1);
    EXPECT_EQ(engine.sharpness, StrengthOfSlider(1));
    EXPECT_EQ(engine.ditherGain, 0);
    EXPECT_EQ(engine.lightingEnabled, 1);
    EXPECT_EQ(engine.colourBiasA, 50);
    EXPECT_EQ(engine.colourBiasB, 42);
    EXPECT_EQ(engine.colourBiasC, 47);
    EXPECT_FLOAT_EQ(noise.level, 0.75F);
    SyntheticVideo plain(PixelFormat::yuy2, 64, 48, false);
    plain.request.enableLighting = false;
    plain.request.sharpness = 2;
    Enhance(plain);
    EXPECT_EQ(engine.horizontalMode, 0);
    EXPECT_EQ(engine.verticalMode, 0);
    EXPECT_EQ(engine.sharpness, 2);
    EXPECT_EQ(engine.lightingEnabled, 0);
    EXPECT_EQ(engine.colourBiasB, 50);
    EXPECT_EQ(engine.colourBiasC, 50);
}

TEST_F(Driver, DesignsFiltersOnlyWhenTheSettingsChanged) {
    SyntheticVideo video(PixelFormat::yv12, 400, 300, true);
    Enhance(video);
    EXPECT_EQ(engine.filtersDirty, 0);
    const TapSet taps = engine.tapsVertical.a;
    video.request.sharpness = 2;
    video.request.settingsDirty = false;
    Enhance(video);
    EXPECT_EQ(engine.tapsVertical.a, taps);
    video.request.settingsDirty = true;
    Enhance(video);
    EXPECT_NE(engine.tapsVertical.a, taps);
}

TEST_F(Driver, ShowsTheSourceWhereTheEngineWritesNothing) {
    SyntheticVideo planar(PixelFormat::iyuv, 33, 17, false);
    planar.request.sharpness = 0;
    planar.request.enableLighting = false;
    engine.toneEnabled = 0;
    Enhance(planar);
    for (size_t i = 0; i < 33 * 16; ++i) ASSERT_NEAR(planar.output[i], planar.input[i], 40) << "noise and no more";

    SyntheticVideo packed(PixelFormat::yuy2, 33, 17, false);
    packed.request.sharpness = 0;
    Enhance(packed);
    SyntheticVideo untouched(PixelFormat::yuy2, 33, 17, false);
    untouched.NextFrame();
    EXPECT_EQ(packed.output, untouched.output) << "the buffer keeps what it held";
}

TEST_F(Driver, SizesTheOverlayForTheOutput) {
    SyntheticVideo video(PixelFormat::yuy2, 33, 17, true);
    Enhance(video);
    EXPECT_EQ(overlay.Width(), 56);
    EXPECT_EQ(overlay.Height(), 24);
    const int32_t before = noise.offsetY;
    Enhance(video);
    EXPECT_NE(noise.offsetY, before) << "the noise moves from frame to frame";
}

}  // namespace
}  // namespace clarivex
