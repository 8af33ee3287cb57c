#include "overlay/font_engine.h"

#include "overlay/glyph_outline.h"
#include "overlay/rasteriser.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

PointList OutlineOf(Font& font, int8_t character) {
    PointList outline;
    int32_t penX = 0, penY = 0;
    AppendGlyph(outline, font, character, penX, penY);
    return outline;
}

/// Square pixels inside clockwise contours less those inside the others.
double ClockwiseArea(const PointList& outline) {
    int64_t area = 0;
    OutlinePoint start = ContourBreak, last = ContourBreak;
    for (const OutlinePoint& point : outline) {
        if (last == ContourBreak)
            start = point;
        else if (point != ContourBreak)
            area += int64_t{last.x - start.x} * (point.y - start.y) - int64_t{last.y - start.y} * (point.x - start.x);
        last = point;
    }
    return static_cast<double>(area) / 2 / 65536;
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
    EXPECT_GE(ClockwiseArea(OutlineOf(*bold, 'C')), ClockwiseArea(OutlineOf(*regular, 'C')));
    const Font::Glyph letter = regular->GlyphOutline('a', {});
    const Font::Glyph space = regular->GlyphOutline(' ', {});
    EXPECT_LT(space.bytes, 1);
    EXPECT_GT(space.advance, 16);
    EXPECT_GT(letter.advance, space.advance);
    EXPECT_LT(letter.advance, 256);
}

TEST_F(SystemFonts, WritesTheRecordsWholeOrNotAtAll) {
    const auto font = engine->MakeFont({});
    const int64_t bytes = font->GlyphOutline('C', {}).bytes;
    ASSERT_GT(bytes, 0);
    for (const bool fits : {false, true}) {
        std::vector<uint8_t> buffer(static_cast<size_t>(fits ? bytes + 7 : bytes - 1), 0xA5);
        EXPECT_EQ(font->GlyphOutline('C', buffer).bytes, bytes);
        const auto end = buffer.begin() + (fits ? bytes : 0);
        EXPECT_EQ(std::count(end, buffer.end(), 0xA5), buffer.end() - end) << "behind the records";
    }
}

}  // namespace
}  // namespace clarivex
