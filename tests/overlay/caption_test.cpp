// The caption from its colours to its tiles: how it fades, what stays between frames, sizes that change, and its end.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "overlay/caption_style.h"
#include "overlay/overlay.h"
#include "simd/kernel_table.h"
#include "tests/overlay/fake_fonts.h"
#include "tests/support/crc32.h"
#include "tests/support/memory_count.h"
#include "tests/support/test.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

TEST(CaptionStyle, PixelAspectsAreLimitedAndNonsenseCountsAsSquare) {
    EXPECT_EQ(PlaceCaption(640, 480, 1.0F).text, (OutlineTransform{6287, 7272, 757, 120608, 0, 0}));
    EXPECT_EQ(PlaceCaption(640, 480, 1e30F).text, PlaceCaption(640, 480, 64.0F).text);
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float aspect : {0.0F, -1.0F, infinity, -infinity, std::nanf("")})
        EXPECT_EQ(PlaceCaption(640, 480, aspect).text, PlaceCaption(640, 480, 1.0F).text) << aspect;
}

/// What the output stages see of the overlay: its rows, without a byte where there is nothing to blend.
using TileRows = std::vector<std::vector<uint8_t>>;

class CaptionTiles {
public:
    explicit CaptionTiles(std::unique_ptr<FontEngine> fonts = std::make_unique<FakeFontEngine>())
        : overlay(std::move(fonts)) {}

    CaptionTiles& Compose(int32_t frames, int32_t width, int32_t height, float aspect = 1.0F) {
        for (int32_t i = 0; i < frames; ++i)
            OverlayCompose(overlay, run.Advance(), width, height, aspect, scalarKernels);
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

    CaptionRun run;
    Overlay overlay;
};

TEST(Caption, GivesTheSameTilesOnEverySystemAndAtEveryWidth) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        CaptionTiles caption;
        uint32_t digest = 0;
        for (int32_t frame = 1; frame <= captionEnd; ++frame) {
            const bool narrow = frame > 40 && frame <= 60;
            OverlayCompose(caption.overlay, frame, narrow ? 123 : 333, 240, narrow ? 1.0F : 16.0F / 11.0F, kernels);
            for (const auto& row : caption.Rows()) digest = Crc32(row.data(), row.size(), digest);
        }
        EXPECT_EQ(digest, 0xc2107479U) << kernels.name;
    });
}

TEST(Caption, StandsBetweenItsFadesLeavesNothingAndComesBackAfterARestart) {
    CaptionTiles caption;
    const TileRows standing = caption.Compose(72, 320, 240).Rows();
    EXPECT_EQ(caption.Compose(72, 320, 240).Rows(), standing);
    EXPECT_NE(caption.Compose(1, 320, 240).Rows(), standing);
    EXPECT_TRUE(caption.Compose(captionEnd - 145, 320, 240).IsEmpty());
    EXPECT_EQ(caption.overlay.Tiles().AllocatedWidth(), 0);
    const MemoryCount memory;
    caption.Compose(50, 320, 240);
    EXPECT_EQ(MemoryCount::Attempts(), 0);
    caption.run.Restart();
    EXPECT_NE(caption.Compose(1, 320, 240).Rows(), standing);
    EXPECT_EQ(caption.Compose(71, 320, 240).Rows(), standing);
}

TEST(Caption, AChangedSizeLooksAsIfItHadAlwaysBeenThatSize) {
    for (const int32_t frame : {2, 30, 72, 100, 200, 275})
        for (const auto& [width, height, aspect] :
             {std::tuple{321, 241, 1.0F}, {320, 120, 1.0F}, {37, 480, 1.0F}, {320, 240, 2.0F}}) {
            const auto changed = CaptionTiles().Compose(frame - 1, 320, 240).Compose(1, width, height, aspect).Rows();
            const auto expected = CaptionTiles().Compose(frame, width, height, aspect).Rows();
            EXPECT_EQ(changed, expected) << frame << ": " << width << " x " << height;
        }
}

TEST(Caption, StandsStillWhileItIsHidden) {
    CaptionTiles caption;
    for (const int32_t frame : {30, 31}) {
        caption.run.SetShown(false);
        EXPECT_TRUE(caption.Compose(3, 160, 120).IsEmpty());
        EXPECT_EQ(caption.overlay.Tiles().Width(), 160);
        caption.run.SetShown(true);
        const TileRows expected = CaptionTiles().Compose(frame, 320, 240).Rows();
        EXPECT_EQ(caption.Compose(frame == 30 ? 30 : 1, 320, 240).Rows(), expected) << frame;
    }
}

TEST(Caption, WithoutFontsNothingIsDrawn) {
    struct NoFonts : FontEngine {
        std::unique_ptr<Font> MakeFont(FontStyle /*style*/) override { return nullptr; }
    };
    CaptionTiles captions[] = {CaptionTiles(nullptr), CaptionTiles(std::make_unique<NoFonts>())};
    for (CaptionTiles& caption : captions)
        for (const int32_t width : {48, 48, 24}) EXPECT_TRUE(caption.Compose(1, width, 10).IsEmpty());
}

/// Under the sanitizers: nothing outside a buffer, no number that does not fit.
TEST(Caption, TakesAnySizeAndPixelAspect) {
    CaptionTiles caption;
    for (const float aspect : {1.0F, 0.0F, -3.0F, 1e-20F, 1e20F, std::nanf(""), 64.0F})
        for (const auto& [width, height] :
             {std::pair{32, 8}, {0, 0}, {0, 40}, {1, 1}, {33, 8}, {65536, 8}, {16, 20000}, {7, 65536}, {400, 300}}) {
            caption.Compose(1, width, height, aspect);
            EXPECT_EQ(caption.overlay.Tiles().Height(), height);
        }
    EXPECT_FALSE(caption.IsEmpty());
}

}  // namespace
}  // namespace clarivex
