#include "overlay/text_layout.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <string_view>

#include "overlay/glyph_outline.h"
#include "runtime/memory.h"

namespace clarivex {
namespace {

// Sets a text character by character. A font lives until a tag asks for another style.
class TextSetter {
public:
    TextSetter(const TextContent& content, FontEngine& fonts, PointList& outline)
        : content(content), fonts(fonts), outline(outline) {}

    void SetText(std::string_view text) {
        while (!text.empty()) {
            const char character = text.front();
            text.remove_prefix(1);
            if (character == '<' && content.markup) {
                const std::string_view tag = text.substr(0, text.find('>'));
                ObeyTag(tag);
                text.remove_prefix(std::min(tag.size() + 1, text.size()));
            } else {
                SetCharacter(character);
            }
        }
        AlignLine();
    }

private:
    void ObeyTag(std::string_view tag) {
        if (tag == "i" || tag == "/i") style.italic = tag == "i";
        if (tag == "b" || tag == "/b") style.bold = tag == "b";
        fontValid = false;
    }

    void SetCharacter(char character) {
        if (character == '\n') AlignLine();
        if (!fontValid) RenewFont();
        if (font == nullptr) return;
        const int32_t advance = AppendGlyph(outline, *font, static_cast<int8_t>(character), penX, penY);
        penX = ToCoordinate(static_cast<int64_t>(penX) + advance);
    }

    void RenewFont() {
        font.reset();  // one at a time
        font = WaitForMemory([this] { return fonts.MakeFont(style); });
        fontValid = true;
    }

    // Moves the line that the pen stands at the end of.
    void AlignLine() {
        const int32_t shift = AlignmentShift();
        for (; lineStart < outline.Count(); ++lineStart) {
            OutlinePoint& point = outline[lineStart];
            if (IsPosition(point)) point.x = ToCoordinate(static_cast<int64_t>(point.x) - shift);
        }
    }

    int32_t AlignmentShift() const {
        if ((content.align & TextContent::alignCentre) != 0) return penX >> 1;
        return (content.align & TextContent::alignRight) != 0 ? penX : 0;
    }

    const TextContent& content;
    FontEngine& fonts;
    PointList& outline;
    std::unique_ptr<Font> font;
    bool fontValid = false;
    FontStyle style;
    int32_t penX = 0;
    int32_t penY = 0;
    int32_t lineStart = 0;  // index of the line's first point
};

constexpr double arcStep = 0.1;  // radians

OutlinePoint OnCircle(double angle, int32_t radius) {
    constexpr int32_t pixelUnits = emUnits / Font::cellHeight;
    const double units = static_cast<double>(radius) * pixelUnits;
    return {ToCoordinate(std::llrint(std::sin(angle) * units)), ToCoordinate(std::llrint(-std::cos(angle) * units))};
}

// A filled sector around the origin, clockwise from straight up.
void AppendArc(PointList& outline, int32_t radius, int32_t turn) {
    const double angle = turn / 65536.0 * 2 * std::numbers::pi;
    const auto lastStep = static_cast<int32_t>(std::floor(angle / arcStep));
    outline.Append({0, 0});
    for (int32_t i = 0; i <= lastStep; ++i) outline.Append(OnCircle(arcStep * i, radius));
    outline.Append(OnCircle(angle, radius));
    outline.Append(ContourBreak);
}

}  // namespace

void LayoutText(const TextContent& content, FontEngine& fonts, OutlineHandle& outline) {
    if (outline == nullptr || outline.use_count() > 1)
        outline = WaitForMemory([] { return std::make_shared<PointList>(); });
    outline->Clear();
    if (content.arcMode) {
        AppendArc(*outline, content.arcRadius, content.arcTurn);
    } else {
        const auto length = static_cast<size_t>(content.text.Length() - 1);
        TextSetter(content, fonts, *outline).SetText({content.text.Text(), length});
    }
}

}  // namespace clarivex
