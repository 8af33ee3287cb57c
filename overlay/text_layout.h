// Lines of text as one outline, in units that do not depend on the picture.
#pragma once

#include <cstdint>
#include <memory>

#include "overlay/font_engine.h"
#include "overlay/point_list.h"
#include "runtime/short_string.h"

namespace clarivex {

/// Sets characters one behind the other, from (0, 0), the baseline of the first line; lines lie an em apart. A font lives
/// until another style is asked for.
class TextSetter {
public:
    TextSetter(FontEngine& fonts, PointList& outline) : fonts(fonts), outline(outline) {}

    /// Appends a character at the pen. 10 begins a new line, 13 is ignored, and so is every character without a font.
    void SetCharacter(char character);

    /// The style of what follows; the next character makes its font anew, also for the style that there is.
    void SetStyle(FontStyle newStyle);

    /// Where the next character goes, in outline units.
    int32_t PenX() const { return penX; }

private:
    FontEngine& fonts;
    PointList& outline;
    std::unique_ptr<Font> font;
    bool fontValid = false;
    FontStyle style;
    int32_t penX = 0;
    int32_t penY = 0;
};

/// Makes `outline` an empty list that nobody else holds: its own, or a new one when it is shared or missing.
void BeginOutline(OutlineHandle& outline);

/// Lays a text out in the plain style, its lines from 0 to the right. `outline` then holds a list with what the fonts
/// gave, which may be nothing; a list that others hold too stays as it is and is replaced.
void LayoutText(const ShortString& text, FontEngine& fonts, OutlineHandle& outline);

}  // namespace clarivex
