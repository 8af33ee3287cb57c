// The caption from its colours to its tiles: how it fades, what stays between frames, sizes that change, and its end.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "overlay/caption_style.h"
#include "overlay/overlay.h"
#include "overlay/yuva_image.h"
#include "simd/kernel_table.h"
#include "tests/overlay/fake_fonts.h"
#include "tests/support/crc32.h"
#include "tests/support/memory_count.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

TEST(CaptionStyle, FadesInStandsAndFadesOut) {
    struct Case {
        int32_t frame, opacity;
        TextColour text, shadow;
    };
    const Case cases[] = {
        {1, 4, {4, 4, 1, 252}, {0, 0, 0, 254}},          {36, 128, {128, 128, 40, 128}, {6, 6, 6, 161}},
        {71, 252, {251, 251, 79, 4}, {12, 12, 12, 68}},  {72, 256, {255, 255, 80, 0}, {12, 12, 12, 65}},
        {144, 256, {255, 255, 80, 0}, {12, 12, 12, 65}}, {145, 254, {253, 253, 79, 2}, {12, 12, 12, 67}},
        {200, 147, {146, 146, 46, 109}, {7, 7, 7, 147}}, {275, 2, {2, 2, 1, 254}, {0, 0, 0, 255}},
        {captionEnd, 0, {0, 0, 0, 255}, {0, 0, 0, 255}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(CaptionOpacity(c.frame), c.opacity) << c.frame;
        EXPECT_EQ(ColoursOf(c.frame).text, c.text) << c.frame;
        EXPECT_EQ(ColoursOf(c.frame).shadow, c.shadow) << c.frame;
    }
    EXPECT_TRUE(ColoursOf(captionEnd).text.IsGone());
    EXPECT_FALSE(ColoursOf(1).shadow.IsGone());
}

TEST(CaptionStyle, FollowsHeightShapeAndPixelAspect) {
    struct Case {
        int32_t width, height;
        float aspect;
        OutlineTransform text;
        int32_t shadowX, shadowY;
    };
    const Case cases[] = {
        {1920, 1080, 1.0F, {15915, 18409, 1917, 270728, 0, 0}, 1124, 1124},
        {640, 480, 1.0F, {6287, 7272, 757, 120608, 0, 0}, 444, 444},
        {720, 576, 16.0F / 15.0F, {7073, 7670, 852, 145059, 0, 0}, 499, 468},
        {1440, 1080, 4.0F / 3.0F, {14217, 12334, 1713, 272626, 0, 0}, 1004, 753},
        {240, 480, 1.0F, {4739, 5481, 571, 121167, 0, 0}, 335, 335},
        {32, 8, 1.0F, {117, 136, 14, 2006, 0, 0}, 8, 8},
        {1920, 1080, 1e30F, {682439, 12334, 82229, 272626, 0, 0}, 48181, 753},  // as an aspect of 64
    };
    for (const Case& c : cases) {
        const CaptionPlacement placement = PlaceCaption(c.width, c.height, c.aspect);
        EXPECT_EQ(placement.text, c.text) << c.width << " x " << c.height;
        EXPECT_EQ(placement.shadow.translateX - placement.text.translateX, c.shadowX) << c.width << " x " << c.height;
        EXPECT_EQ(placement.shadow.translateY - placement.text.translateY, c.shadowY) << c.width << " x " << c.height;
        EXPECT_EQ(placement.shadow.scaleX, c.text.scaleX);
    }
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float aspect : {0.0F, -1.0F, infinity, -infinity, std::nanf("")})
        EXPECT_EQ(PlaceCaption(640, 480, aspect).text, PlaceCaption(640, 480, 1.0F).text) << aspect;
}

TEST(CaptionColour, CoversAllButOneStepOfTransparency) {
    const auto yellow = ColourTerms({255, 255, 80, 0});
    EXPECT_EQ(yellow, (std::array<int16_t, 4>{-255 * 64, 202 * 64, -77 * 64, 12 * 64}));
    YuvaImage image;
    image.Reallocate(2, 1);
    image.ClearRectangle({0, 0, 2, 1});
    const uint8_t coverage[] = {255, 0};
    scalarKernels.paintCoverage(coverage, yellow.data(), image.Pixel(0, 0), 2);
    const uint8_t expected[] = {1, 217, 51, 140, 254, 16, 128, 128};
    EXPECT_TRUE(std::equal(expected, expected + 8, image.Pixel(0, 0)));
}

TEST(YuvaImage, EmptyPixelsBecomeNeutralTilesUpToTheLastGroup) {
    YuvaImage image;
    image.Reallocate(13, 2);
    std::fill_n(image.Pixel(0, 0), 2 * image.Stride(), uint8_t{77});
    image.ClearRectangle({-5, -5, 13, 100});
    for (const bool oddRow : {false, true}) {
        uint8_t groups[2 * OverlayTiles::groupBytes];
        scalarKernels.packTileRow(image.Pixel(0, 1), groups, 2, oddRow);
        for (const uint8_t* group : {groups, groups + OverlayTiles::groupBytes}) {
            EXPECT_EQ(std::count(group, group + 8, 0), 8);
            EXPECT_EQ(std::count(group + 8, group + 16, 255), 8);
            EXPECT_EQ(std::count(group + 16, group + 24, 0), 8);
        }
    }
    image.ClearRectangle({4, 0, 5, 1});
    EXPECT_EQ(image.Pixel(3, 0)[0], 255);
}

/// What the output stages see of the overlay: its rows, without a byte where there is nothing to blend.
using TileRows = std::vector<std::vector<uint8_t>>;

class CaptionTiles {
public:
    CaptionTiles& Compose(int32_t frames, int32_t width, int32_t height, float aspect = 1.0F) {
        for (int32_t i = 0; i < frames; ++i) OverlayCompose(overlay, width, height, aspect, scalarKernels);
        return *this;
    }

    TileRows Rows() const {
        TileRows rows;
        for (int32_t y = 0; y < overlay.Tiles().Height(); ++y) {
            const uint8_t* row = overlay.Tiles().Row(y);
            rows.emplace_back();
            if (row != nullptr) rows.back().assign(row, row + overlay.Tiles().Stride());
        }
        return rows;
    }

    bool IsEmpty() const { return std::ranges::count(Rows(), TileRows::value_type()) == overlay.Tiles().Height(); }

    Overlay overlay{std::make_unique<FakeFontEngine>()};
};

TEST(Caption, DrawsYellowStrokesInTheLowerLeft) {
    CaptionTiles caption;
    caption.Compose(100, 1922, 1080);
    const TileRows rows = caption.Rows();
    const auto first = std::ranges::find_if(rows, [](const auto& row) { return !row.empty(); });
    EXPECT_GT(first - rows.begin(), 900);

    // The middle of the first letter's left stroke.
    const OutlineTransform transform = PlaceCaption(1922, 1080, 1.0F).text;
    const int32_t x = ((32 * 256 * transform.scaleX >> 16) + transform.translateX) >> 8;
    const int32_t y = ((-80 * 256 * transform.scaleY >> 16) + transform.translateY) >> 8;
    ASSERT_FALSE(rows[static_cast<size_t>(y)].empty());
    const uint8_t* group = rows[static_cast<size_t>(y)].data() + x / 8 * 24;
    EXPECT_NEAR(group[x % 8], 217, 1);
    EXPECT_LE(group[8 + x % 8], 1);
    EXPECT_NEAR(group[16 + x % 8 / 2 * 2], 51, 1);
    EXPECT_NEAR(group[17 + x % 8 / 2 * 2], 140, 1);
    const uint8_t* right = rows[static_cast<size_t>(y)].data() + 240 * 24;
    EXPECT_EQ(std::count(right, right + 8, 0) + std::count(right + 8, right + 16, 255), 16);
}

TEST(Caption, GivesTheSameTilesOnEverySystemAndAtEveryWidth) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        CaptionTiles caption;
        uint32_t digest = 0;
        for (int32_t frame = 1; frame <= captionEnd; ++frame) {
            const bool narrow = frame > 40 && frame <= 60;
            OverlayCompose(caption.overlay, narrow ? 123 : 333, 240, narrow ? 1.0F : 16.0F / 11.0F, kernels);
            for (const auto& row : caption.Rows()) digest = Crc32(row.data(), row.size(), digest);
        }
        EXPECT_EQ(digest, 0xc2107479U) << kernels.name;
    });
}

TEST(Caption, KeepsItsTilesWhileItStandsAndComesBackAfterARestart) {
    CaptionTiles caption;
    const TileRows firstFrame = caption.Compose(1, 320, 240).Rows();
    EXPECT_FALSE(caption.IsEmpty());
    const TileRows standing = caption.Compose(71, 320, 240).Rows();
    EXPECT_NE(standing, firstFrame);
    EXPECT_EQ(caption.Compose(72, 320, 240).Rows(), standing);
    EXPECT_NE(caption.Compose(1, 320, 240).Rows(), standing);
    EXPECT_FALSE(caption.Compose(captionEnd - 146, 320, 240).IsEmpty());
    EXPECT_TRUE(caption.Compose(1, 320, 240).IsEmpty());
    EXPECT_EQ(caption.overlay.Tiles().AllocatedWidth(), 0);
    caption.overlay.Restart();
    EXPECT_EQ(caption.Compose(1, 320, 240).Rows(), firstFrame);
    caption.overlay.Restart();
    EXPECT_EQ(caption.Compose(72, 320, 240).Rows(), standing);
}

TEST(Caption, FramesAfterItsEndTakeNoMemory) {
    CaptionTiles caption;
    caption.Compose(captionEnd + 1, 320, 240);
    {
        const MemoryCount memory;
        caption.Compose(50, 320, 240);
        EXPECT_EQ(MemoryCount::Attempts(), 0);
    }
    EXPECT_TRUE(caption.Compose(1, 200, 100).IsEmpty());
    EXPECT_EQ(caption.overlay.Tiles().AllocatedWidth(), 0);
}

TEST(Caption, AChangedSizeLooksAsIfItHadAlwaysBeenThatSize) {
    for (const int32_t frame : {2, 30, 72, 100, 200, 275})
        for (const auto& [width, height] : {std::pair{321, 241}, std::pair{320, 120}, std::pair{37, 480}}) {
            CaptionTiles changed;
            changed.Compose(frame - 1, 320, 240).Compose(1, width, height);
            const TileRows expected = CaptionTiles().Compose(frame, width, height).Rows();
            EXPECT_EQ(changed.Rows(), expected) << frame << ": " << width << " x " << height;
        }
    const auto anotherAspect = CaptionTiles().Compose(99, 320, 240, 0.5F).Compose(1, 320, 240, 2.0F).Rows();
    EXPECT_EQ(anotherAspect, CaptionTiles().Compose(100, 320, 240, 2.0F).Rows());
}

TEST(Caption, StandsStillWhileItIsHidden) {
    CaptionTiles caption;
    caption.overlay.SetShown(false);
    EXPECT_TRUE(caption.Compose(3, 320, 240).IsEmpty());
    caption.overlay.SetShown(true);
    const TileRows standing = caption.Compose(100, 320, 240).Rows();
    EXPECT_EQ(standing, CaptionTiles().Compose(100, 320, 240).Rows());
    caption.overlay.SetShown(false);
    EXPECT_TRUE(caption.Compose(1, 320, 240).IsEmpty());
    EXPECT_TRUE(caption.Compose(1, 160, 120).IsEmpty());
    EXPECT_EQ(caption.overlay.Tiles().Width(), 160);
    EXPECT_TRUE(caption.Compose(1, 320, 240).IsEmpty());
    caption.overlay.SetShown(true);
    EXPECT_EQ(caption.Compose(1, 320, 240).Rows(), standing);
}

TEST(Caption, WithoutFontsNothingIsDrawn) {
    auto noFonts = std::make_unique<FakeFontEngine>();
    noFonts->hasFonts = false;
    Overlay overlays[] = {Overlay(nullptr), Overlay(std::move(noFonts))};
    for (Overlay& overlay : overlays)
        for (const int32_t width : {48, 48, 24}) {
            OverlayCompose(overlay, width, 10, 1.0F, scalarKernels);
            EXPECT_EQ(overlay.Tiles().Width(), width);
            EXPECT_TRUE(std::ranges::all_of(overlay.Tiles().RowTable(), [](int32_t entry) { return entry == -1; }));
            EXPECT_EQ(overlay.Tiles().Row(5), nullptr);
        }
}

/// Under the sanitizers: nothing outside a buffer, no number that does not fit.
TEST(Caption, TakesAnySizeAndPixelAspect) {
    struct Size {
        int32_t width, height;
    };
    CaptionTiles caption;
    int32_t frame = 0;
    for (const float aspect : {1.0F, 0.0F, -3.0F, 1e-20F, 1e20F, std::nanf(""), 64.0F})
        for (const Size& size :
             {Size{32, 8}, {0, 0}, {0, 40}, {1, 1}, {33, 8}, {65536, 8}, {16, 20000}, {7, 65536}, {400, 300}}) {
            if (frame++ % 200 == 0) caption.overlay.Restart();
            caption.Compose(1, size.width, size.height, aspect);
            EXPECT_EQ(caption.overlay.Tiles().RowTable().size(), static_cast<size_t>(size.height));
        }
    EXPECT_FALSE(caption.IsEmpty());
}

}  // namespace
}  // namespace clarivex
