#include "overlay/font_engine.h"

#include "overlay/glyph_outline.h"
#include "overlay/rasteriser.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes RecordsOf(Font& font, int32_t character) {
    Bytes bytes(static_cast<size_t>(std::max<int64_t>(font.GlyphOutline(character, {}).bytes, 0)));
    font.GlyphOutline(character, bytes);
    return bytes;
}

PointList OutlineOf(Font& font, int8_t character) {
    PointList outline;
    int32_t penX = 0, penY = 0;
    AppendGlyph(outline, font, character, penX, penY);
    return outline;
}

/// Pixels that a letter covers, of 256 by 256: clockwise contours less those inside them that run the other way.
int32_t PixelsOf(const PointList& outline) {
    constexpr int32_t side = 256;
    MaskBitmap mask;
    mask.Reallocate(side, side);
    mask.ClearRectangle({0, 0, side, side});
    PaintOutline({.scaleX = 65536, .scaleY = 65536, .offsetY = 224}, {outline.begin(), outline.end()}, mask,
                 Region::OfRectangle(0, 0, side, side));
    int32_t covered = 0;
    for (int32_t y = 0; y < side; ++y)
        covered +=
            static_cast<int32_t>(std::count_if(mask.Row(y), mask.Row(y) + side, [](uint8_t c) { return c > 127; }));
    return covered;
}

class SystemFonts : public testing::Test {
protected:
    void SetUp() override {
        if (!engine->MakeFont({})) GTEST_SKIP() << "no font is installed";
    }

    std::unique_ptr<FontEngine> engine = MakeSystemFontEngine();
};

TEST_F(SystemFonts, LettersAreClockwiseContoursInsideTheCell) {
    for (const FontStyle style : {FontStyle{}, {.italic = true}, {.bold = true}, {.italic = true, .bold = true}}) {
        const auto font = engine->MakeFont(style);
        ASSERT_NE(font, nullptr);
        for (const char letter : {'C', 'l', 'a', 'o', '8'}) {
            SCOPED_TRACE(letter);
            const PointList outline = OutlineOf(*font, letter);
            int32_t highest = 0;
            for (const OutlinePoint& point : outline) {
                if (point == ContourBreak) continue;
                EXPECT_TRUE(point.x >= -32 * 256 && point.x <= 256 * 256 && point.y <= 32 * 256);
                highest = std::max(highest, -point.y / 256);
            }
            EXPECT_TRUE(highest > 96 && highest <= 224) << highest;
            EXPECT_GT(PixelsOf(outline), 1000);
        }
    }
}

TEST_F(SystemFonts, BoldIsHeavierAndASpaceHasOnlyAnAdvance) {
    const auto regular = engine->MakeFont({});
    const auto bold = engine->MakeFont({.bold = true});  // the same again where a system has only that
    for (const int8_t letter : {'C', 'l', 'a'})
        EXPECT_GE(PixelsOf(OutlineOf(*bold, letter)), PixelsOf(OutlineOf(*regular, letter))) << letter;
    const Font::Glyph letter = regular->GlyphOutline('a', {});
    const Font::Glyph space = regular->GlyphOutline(' ', {});
    EXPECT_LT(space.bytes, 1);
    EXPECT_GT(space.advance, 16);
    EXPECT_GT(letter.advance, space.advance);
    EXPECT_LT(letter.advance, 256);
}

TEST_F(SystemFonts, WritesTheRecordsWholeOrNotAtAll) {
    const auto font = engine->MakeFont({});
    const Bytes records = RecordsOf(*font, 'C');
    ASSERT_FALSE(records.empty());
    for (const size_t size : {records.size() - 1, records.size() + 7}) {
        Bytes buffer(size, 0xA5), expected = buffer;
        if (size > records.size()) std::ranges::copy(records, expected.begin());
        EXPECT_EQ(font->GlyphOutline('C', buffer).bytes, std::ssize(records));
        EXPECT_EQ(buffer, expected);
    }
}

}  // namespace
}  // namespace clarivex
