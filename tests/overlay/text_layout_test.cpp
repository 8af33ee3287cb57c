#include "overlay/text_layout.h"

#include "overlay/glyph_outline.h"
#include "overlay/sleeping/arc_outline.h"
#include "overlay/sleeping/styled_text.h"
#include "tests/overlay/fake_fonts.h"
#include "tests/support/test.h"

namespace clarivex {

static void PrintTo(const OutlinePoint& point, std::ostream* out) { *out << point.x << ", " << point.y; }

namespace {

using Points = std::vector<OutlinePoint>;

// A glyph's outline; a pixel of the font is 256 units.
Points Outline(const FakeGlyph& glyph, OutlinePoint pen = {1000, 2000}) {
    FakeFontEngine engine;
    engine.glyphs['x'] = glyph;
    PointList outline;
    EXPECT_EQ(AppendGlyph(outline, *engine.MakeFont({}), 'x', pen.x, pen.y), glyph.advance * 256);
    return {outline.begin(), outline.end()};
}

Points Outline(const RecordWriter& records) { return Outline(FakeGlyph{records.bytes, 9}); }

// Where the glyphs of a layout begin: the first point of every second contour, a box with a hole each.
Points GlyphStarts(const PointList& outline) {
    Points starts;
    for (int32_t i = 0; i < outline.Count(); i += 10) starts.push_back(outline[i]);
    return starts;
}

Points GlyphStarts(const StyledText& content, FakeFontEngine& fonts) {
    OutlineHandle outline;
    LayoutStyledText(content, fonts, outline);
    return GlyphStarts(*outline);
}

Points GlyphStarts(const char* text, FakeFontEngine& fonts) {
    OutlineHandle outline;
    LayoutText(ShortString(text), fonts, outline);
    return GlyphStarts(*outline);
}

RecordWriter Triangle() { return RecordWriter().Contour({0, 0}).Curve(RecordWriter::line, {{0, 4}, {2, 0}}); }

const Points triangle{{1000, 2000}, {1000, 976}, {1512, 2000}, ContourBreak};

TEST(GlyphOutline, DrawsLinesFromThePenWithYDownwardAndSplinesAsFourOfThem) {
    EXPECT_EQ(Outline(Triangle()), triangle);
    const auto closed = RecordWriter().Contour({0, 0}).Curve(RecordWriter::line, {{0, 4}, {2, 0}, {0, 0}});
    EXPECT_EQ(Outline(closed), triangle);  // the start is not told twice
    const auto arch = RecordWriter().Contour({0, 0}).Curve(RecordWriter::spline, {{0, 16}, {16, 16}});
    EXPECT_EQ(Outline(arch),
              (Points{{1000, 2000}, {1256, 208}, {2024, -1072}, {3304, -1840}, {5096, -2096}, ContourBreak}));
    // From (0, 0) by (0, 16) to the middle (8, 16), then by (16, 16) to (16, 0), one half the mirror of the other.
    const auto dome = RecordWriter().Contour({0, 0}).Curve(RecordWriter::spline, {{0, 16}, {16, 16}, {16, 0}});
    const Points points = Outline(dome);
    ASSERT_EQ(points.size(), 10U);
    EXPECT_EQ((Points{points[3], points[4], points[5], points[8]}),
              (Points{{2152, -1840}, {3048, -2096}, {3944, -1840}, {5096, 2000}}));
    const auto others = Triangle().Curve(RecordWriter::spline, {{7, 7}}).Curve(3, {{7, 7}, {8, 8}});
    EXPECT_EQ(Outline(others), triangle);
}

// Every spoiled record stands between a triangle and another contour.
TEST(GlyphOutline, EndsWithWhatOverruns) {
    constexpr size_t secondRecord = 36;
    auto two = Triangle().Contour({1, 1}).Curve(RecordWriter::line, {{1, 5}, {3, 1}});
    ASSERT_EQ(Outline(two).size(), 8U);
    for (const uint32_t size : {0U, 15U, 37U, 0xFFFFFFFFU}) {
        two.Patch(secondRecord, size);
        EXPECT_EQ(Outline(two), triangle) << size;
    }
    two.bytes.resize(secondRecord + 15);
    EXPECT_EQ(Outline(two), triangle);
    auto tooMany = Triangle().Curve(RecordWriter::line, {{9, 9}}), cut = Triangle().Curve(RecordWriter::line, {});
    tooMany.Patch<uint16_t>(38, 2);  // one point more than the record has
    cut.bytes.resize(39);
    cut.Patch<uint32_t>(0, 39);
    for (RecordWriter* writer : {&tooMany, &cut}) {
        writer->Contour({1, 1}).Curve(RecordWriter::line, {{1, 5}, {3, 1}});
        EXPECT_EQ(Outline(*writer), triangle);
    }
    two.Patch<uint32_t>(4, 25);  // not a contour's type
    EXPECT_EQ(Outline(two), Points{ContourBreak});
}

TEST(GlyphOutline, TrustsNoSizeThatTheFontTells) {
    constexpr int64_t truth = FakeGlyph::truth;
    const auto records = Triangle().bytes;
    // Less than nothing, too much, less behind the first answer, more than there was room for, less than its record.
    for (const auto& [first, then] :
         {std::pair<int64_t, int64_t>{0, truth}, {0x100000, truth}, {truth, -2}, {truth, 37}, {truth, 35}})
        EXPECT_EQ(Outline({records, 4, {first, then}}), Points{}) << first << ", " << then;
    EXPECT_EQ(Outline({records, 4, {100, truth}}), triangle);
}

TEST(GlyphOutline, FarPointsAreNeverTakenForBreaks) {
    const auto spline = RecordWriter().Contour({-32768, -32768}).Curve(RecordWriter::spline, {{}, {32767, 0}});
    const Points outline = Outline({spline.bytes}, {INT32_MIN + 8, INT32_MAX});
    EXPECT_EQ(outline[0], (OutlinePoint{INT32_MIN + 1, INT32_MAX}));
    EXPECT_EQ(std::ranges::count(outline, ContourBreak), 1);
}

TEST(TextLayout, LinesLieAnEmApartAndStartAtZero) {
    FakeFontEngine fonts;
    EXPECT_EQ(GlyphStarts("A \rB\nC", fonts), (Points{{4096, 0}, {53248, 0}, {4096, 65536}}));
    EXPECT_EQ(fonts.made.size(), 1U);
    fonts.glyphs[-28] = {{}, 10};  // bytes from 128 on are negative codes
    EXPECT_EQ(GlyphStarts("\344A", fonts), (Points{{4096 + 2560, 0}}));
}

TEST(TextLayout, LinesAreAlignedEachOnItsOwnAndListsThatOthersHoldAreReplaced) {
    FakeFontEngine fonts;
    StyledText content{.text = ShortString("AB\nC"), .align = StyledText::alignRight};
    EXPECT_EQ(GlyphStarts(content, fonts), (Points{{-61440, 0}, {-28672, 0}, {-28672, 65536}}));
    content.align |= StyledText::alignCentre;
    EXPECT_EQ(GlyphStarts(content, fonts), (Points{{-28672, 0}, {4096, 0}, {-12288, 65536}}));
    OutlineHandle outline;
    LayoutStyledText(content, fonts, outline);
    const OutlineHandle held = outline;
    LayoutText(ShortString("A"), fonts, outline);  // into a list of its own
    EXPECT_EQ(std::pair(held->Count(), outline->Count()), std::pair(30, 10));
}

TEST(TextLayout, TagsSwitchTheFontOnlyInMarkup) {
    FakeFontEngine fonts;
    StyledText content{.text = ShortString("A<b>B<i>C</b><u>D</i>E<F"), .markup = true};
    EXPECT_EQ(GlyphStarts(content, fonts).size(), 5U);
    std::string styles;
    for (const FontStyle& style : fonts.made) styles += {' ', style.italic ? 'i' : '-', style.bold ? 'b' : '-'};
    EXPECT_EQ(styles, " -- -b ib i- --");
    content.markup = false;
    EXPECT_EQ(GlyphStarts(content, fonts).size(), 24U);
}

TEST(TextLayout, ArcsRunClockwiseFromStraightUp) {
    PointList outline;
    AppendArc(outline, 100, 16384);
    ASSERT_EQ(outline.Count(), 1 + 16 + 1 + 1);  // steps 0 … 15 of 0.1 in a quarter of a circle
    EXPECT_EQ((Points{outline[1], outline[2], outline[17]}), (Points{{0, -25600}, {2556, -25472}, {25600, 0}}));
}

}  // namespace
}  // namespace clarivex
