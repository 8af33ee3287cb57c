// Fonts made up for tests: records built by hand, and an engine that gives every character the same simple shape.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "overlay/font_engine.h"

namespace clarivex {

/// A point in whole pixels of the font, y upward.
struct FontPixel {
    int32_t x = 0;
    int32_t y = 0;
};

/// Writes contour records. Tests spoil `bytes` as they like.
struct RecordWriter {
    static constexpr uint32_t line = 1;
    static constexpr uint32_t spline = 2;

    std::vector<uint8_t> bytes;

    RecordWriter& Contour(FontPixel start) {
        contour = bytes.size();
        Put(0);
        Put(24);
        return Points({start});
    }

    RecordWriter& Curve(uint32_t type, std::initializer_list<FontPixel> points) {
        Put(type | static_cast<uint32_t>(points.size()) << 16);
        return Points(points);
    }

    template <class Number>
    void Patch(size_t position, Number value) {
        std::memcpy(bytes.data() + position, &value, sizeof(value));
    }

private:
    void Put(uint32_t word) {
        bytes.resize(bytes.size() + sizeof(word));
        Patch(bytes.size() - sizeof(word), word);
    }

    RecordWriter& Points(std::initializer_list<FontPixel> points) {
        for (const FontPixel point : points)
            for (const int32_t coordinate : {point.x, point.y}) Put(static_cast<uint32_t>(coordinate) << 16);
        Patch(contour, static_cast<uint32_t>(bytes.size() - contour));
        return *this;
    }

    size_t contour = 0;
};

/// A character, and what the font says of its size: first when it is asked for it, then when it has written the outline.
struct FakeGlyph {
    static constexpr int64_t truth = -1;

    std::vector<uint8_t> records;
    int16_t advance = 0;
    int64_t bytesClaimed[2] = {truth, truth};
};

/// A standing box from (16, 0) to (112, 160) with a hole of 32 by 80 pixels in its middle.
inline FakeGlyph BoxWithHole() {
    RecordWriter records;
    records.Contour({16, 0}).Curve(RecordWriter::line, {{16, 160}, {112, 160}, {112, 0}});
    records.Contour({48, 40}).Curve(RecordWriter::line, {{80, 40}, {80, 120}, {48, 120}});
    return {records.bytes, 128};
}

/// Fonts in which all characters but the space are boxes with a hole, 128 pixels wide, unless `glyphs` has them.
class FakeFontEngine : public FontEngine {
public:
    std::map<int32_t, FakeGlyph> glyphs = {{' ', {{}, 64}}};
    std::vector<FontStyle> made;  ///< the styles that were asked for, in order

    std::unique_ptr<Font> MakeFont(FontStyle style) override {
        made.push_back(style);
        return std::make_unique<FakeFont>(*this);
    }

private:
    class FakeFont : public Font {
    public:
        explicit FakeFont(const FakeFontEngine& owner) : engine(owner) {}

        Glyph GlyphOutline(int32_t character, std::span<uint8_t> buffer) override {
            const auto found = engine.glyphs.find(character);
            const FakeGlyph glyph = found != engine.glyphs.end() ? found->second : BoxWithHole();
            const int64_t claimed = glyph.bytesClaimed[buffer.empty() ? 0 : 1];
            std::copy_n(glyph.records.begin(), std::min(buffer.size(), glyph.records.size()), buffer.begin());
            return {claimed == FakeGlyph::truth ? static_cast<int64_t>(glyph.records.size()) : claimed, glyph.advance};
        }

    private:
        const FakeFontEngine& engine;
    };
};

}  // namespace clarivex
