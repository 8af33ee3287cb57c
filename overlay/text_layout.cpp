#include "overlay/text_layout.h"

#include "overlay/glyph_outline.h"
#include "runtime/memory.h"

namespace clarivex {

void TextSetter::SetCharacter(char character) {
    if (!fontValid) {
        font.reset();  // one at a time
        font = WaitForMemory([this] { return fonts.MakeFont(style); });
        fontValid = true;
    }
    if (font == nullptr) return;
    const int32_t advance = AppendGlyph(outline, *font, static_cast<int8_t>(character), penX, penY);
    penX = ToCoordinate(static_cast<int64_t>(penX) + advance);
}

void TextSetter::SetStyle(FontStyle newStyle) {
    style = newStyle;
    fontValid = false;
}

void BeginOutline(OutlineHandle& outline) {
    if (outline == nullptr || outline.use_count() > 1)
        outline = WaitForMemory([] { return std::make_shared<PointList>(); });
    outline->Clear();
}

void LayoutText(const ShortString& text, FontEngine& fonts, OutlineHandle& outline) {
    BeginOutline(outline);
    TextSetter setter(fonts, *outline);
    for (const char* next = text.Text(); *next != '\0'; ++next) setter.SetCharacter(*next);
}

}  // namespace clarivex
