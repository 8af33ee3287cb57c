#include "overlay/font_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace clarivex {
namespace {

using Bytes = std::vector<uint8_t>;

struct Point {
    double x = 0;  // pixels
    double y = 0;
};
using Contour = std::vector<Point>;  // its start, then the points of its curves, those off the curve too

/// Reads numbers from records; sets `broken` instead of leaving them.
struct RecordReader {
    const Bytes& bytes;
    size_t at = 0;
    bool broken = false;

    uint32_t Number(size_t size) {
        broken = broken || bytes.size() - at < size;
        uint32_t number = 0;
        for (size_t i = 0; i < size && !broken; ++i) {
            number |= uint32_t{bytes[at++]} << 8 * i;
        }
        return number;
    }
    Point NextPoint() {
        const auto x = static_cast<int32_t>(Number(4));
        const auto y = static_cast<int32_t>(Number(4));
        return {x / 65536.0, y / 65536.0};
    }
};

/// The contours that records hold; nothing when sizes, types or counts are not as they must be.
std::optional<std::vector<Contour>> ReadContours(const Bytes& bytes) {
    std::vector<Contour> contours;
    RecordReader reader{bytes};
    while (!reader.broken && reader.at < bytes.size()) {
        const size_t end = reader.at + reader.Number(4);
        reader.broken = reader.broken || reader.Number(4) != 24 || end > bytes.size();
        Contour contour{reader.NextPoint()};
        while (!reader.broken && reader.at < end) {
            const uint32_t type = reader.Number(2);
            const uint32_t count = reader.Number(2);
            reader.broken = reader.broken || !((type == 1 && count > 0) || (type == 2 && count > 1));
            for (uint32_t i = 0; i < count && !reader.broken; ++i) {
                contour.push_back(reader.NextPoint());
            }
        }
        reader.broken = reader.broken || reader.at != end;
        contours.push_back(contour);
    }
    return reader.broken ? std::nullopt : std::optional(contours);
}

/// Square pixels inside clockwise contours, y upward, less those inside the others.
double ClockwiseArea(const std::vector<Contour>& contours) {
    double area = 0;
    for (const Contour& contour : contours) {
        for (size_t i = 0; i < contour.size(); ++i) {
            const Point& from = contour[i];
            const Point& to = contour[(i + 1) % contour.size()];
            area += (from.y * to.x - from.x * to.y) / 2;
        }
    }
    return area;
}

Bytes RecordsOf(Font& font, int32_t character) {
    Bytes bytes(static_cast<size_t>(std::max<int64_t>(font.GlyphOutline(character, {}).bytes, 0)));
    font.GlyphOutline(character, bytes);
    return bytes;
}

class SystemFonts : public testing::Test {
protected:
    void SetUp() override {
        if (!engine->MakeFont({})) {
            GTEST_SKIP() << "no font is installed";
        }
    }

    std::unique_ptr<FontEngine> engine = MakeSystemFontEngine();
};

TEST_F(SystemFonts, LettersAreClockwiseContoursInsideTheCell) {
    for (const FontStyle style : {FontStyle{}, {.italic = true}, {.bold = true}, {.italic = true, .bold = true}}) {
        const auto font = engine->MakeFont(style);
        ASSERT_NE(font, nullptr);
        for (const char letter : {'C', 'l', 'a', 'o', '8'}) {
            SCOPED_TRACE(letter);
            const Bytes records = RecordsOf(*font, letter);
            const auto contours = ReadContours(records);
            ASSERT_TRUE(contours.has_value());
            ASSERT_FALSE(contours->empty());
            double highest = 0;
            for (const Contour& contour : *contours) {
                for (const Point& point : contour) {
                    EXPECT_TRUE(point.x >= -32 && point.x <= 256 && point.y >= -32) << point.x << ", " << point.y;
                    highest = std::max(highest, point.y);
                }
            }
            EXPECT_TRUE(highest > 96 && highest <= 224) << highest;
            EXPECT_GT(ClockwiseArea(*contours), 1000);
            EXPECT_EQ(records, RecordsOf(*font, letter));
        }
    }
}

TEST_F(SystemFonts, BoldIsHeavierAndASpaceHasOnlyAnAdvance) {
    const auto regular = engine->MakeFont({});
    const auto bold = engine->MakeFont({.bold = true});  // the same again where a system has only that
    const auto area = [](Font& font, char letter) {
        return ClockwiseArea(ReadContours(RecordsOf(font, letter)).value_or(std::vector<Contour>()));
    };
    for (const char letter : {'C', 'l', 'a'}) {
        EXPECT_GE(area(*bold, letter), area(*regular, letter)) << letter;
    }
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
    Bytes buffer(records.size() - 1, 0xA5);
    EXPECT_EQ(font->GlyphOutline('C', buffer).bytes, int64_t(records.size()));
    EXPECT_EQ(buffer, Bytes(records.size() - 1, 0xA5));

    buffer.assign(records.size() + 7, 0xA5);
    EXPECT_EQ(font->GlyphOutline('C', buffer).bytes, int64_t(records.size()));
    EXPECT_TRUE(std::equal(records.begin(), records.end(), buffer.begin()));
    EXPECT_EQ(std::count(buffer.end() - 7, buffer.end(), 0xA5), 7);
}

TEST_F(SystemFonts, EveryByteGivesNothingOrWholeContours) {
    const auto font = engine->MakeFont({});
    for (int32_t character = -128; character <= 127; ++character) {
        EXPECT_TRUE(ReadContours(RecordsOf(*font, character)).has_value()) << character;
    }
}

}  // namespace
}  // namespace clarivex
