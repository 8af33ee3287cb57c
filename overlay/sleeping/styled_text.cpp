#include "overlay/sleeping/styled_text.h"

#include <algorithm>
#include <string_view>

#include "overlay/text_layout.h"

namespace clarivex {
namespace {

class StyledTextSetter {
public:
    StyledTextSetter(const StyledText& content, FontEngine& fonts, PointList& outline)
        : content(content), outline(outline), setter(fonts, outline) {}

    void SetText(std::string_view text) {
        while (!text.empty()) {
            const char character = text.front();
            text.remove_prefix(1);
            if (character == '<' && content.markup) {
                const std::string_view tag = text.substr(0, text.find('>'));
                ObeyTag(tag);
                text.remove_prefix(std::min(tag.size() + 1, text.size()));
            } else {
                if (character == '\n') AlignLine();
                setter.SetCharacter(character);
            }
        }
        AlignLine();
    }

private:
    void ObeyTag(std::string_view tag) {
        if (tag == "i" || tag == "/i") style.italic = tag == "i";
        if (tag == "b" || tag == "/b") style.bold = tag == "b";
        setter.SetStyle(style);
    }

    /// Moves the line that the pen stands at the end of.
    void AlignLine() {
        const int32_t shift = AlignmentShift();
        for (; lineStart < outline.Count(); ++lineStart) {
            OutlinePoint& point = outline[lineStart];
            if (IsPosition(point)) point.x = ToCoordinate(static_cast<int64_t>(point.x) - shift);
        }
    }

    int32_t AlignmentShift() const {
        if ((content.align & StyledText::alignCentre) != 0) return setter.PenX() >> 1;
        return (content.align & StyledText::alignRight) != 0 ? setter.PenX() : 0;
    }

    const StyledText& content;
    PointList& outline;
    TextSetter setter;
    FontStyle style;
    int32_t lineStart = 0;  // index of the line's first point
};

}  // namespace

void LayoutStyledText(const StyledText& content, FontEngine& fonts, OutlineHandle& outline) {
    BeginOutline(outline);
    StyledTextSetter(content, fonts, *outline).SetText(content.text.Text());
}

}  // namespace clarivex
