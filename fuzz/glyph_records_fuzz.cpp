// A font that says anything of its glyphs: whatever its contour records hold, an outline comes out whose length is
// bounded by theirs and whose contours are closed.
#include "fuzz/support/target.h"
#include "overlay/glyph_outline.h"
#include "overlay/sleeping/styled_text.h"
#include "tests/overlay/fake_fonts.h"

namespace clarivex {
namespace {

/// A point of 8 bytes becomes 4 at most, a record of 16 or more its last point and a break. A font that claims more
/// than it has is believed up to a limit.
size_t MostPoints(const FakeGlyph& glyph) {
    size_t bytes = glyph.records.size();
    for (const int64_t claimed : glyph.bytesClaimed)
        bytes = std::max(bytes, static_cast<size_t>(std::clamp<int64_t>(claimed, 0, 0x100000)));
    return bytes / 8 * 4 + bytes / 16 * 2;
}

void CheckOutline(const PointList& outline, size_t mostPoints) {
    Demand(static_cast<size_t>(outline.Count()) <= mostPoints, "an outline has more points than its records");
    Demand(outline.Count() == 0 || outline[outline.Count() - 1] == ContourBreak, "the last contour is open");
    for (const OutlinePoint& point : outline)
        Demand(IsPosition(point) || point == ContourBreak, "half a break stands for a position");
}

}  // namespace
}  // namespace clarivex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace clarivex;
    InputNumbers numbers(data, size);
    StyledText content;
    content.align = numbers.Below(4);
    content.markup = numbers.Below(2) != 0;
    auto penX = numbers.Any<int32_t>();
    auto penY = numbers.Any<int32_t>();
    FakeFontEngine fonts;
    FakeGlyph& glyph = fonts.glyphs['a'];
    glyph.advance = numbers.Any<int16_t>();
    for (int64_t& claimed : glyph.bytesClaimed)
        if (numbers.Below(8) == 7) claimed = numbers.Any<int32_t>();
    std::string text = "a<b>a\na</b>";  // and what the input adds
    for (uint32_t left = numbers.Below(12); left > 0; --left) text += static_cast<char>(1 + numbers.Below(255));
    glyph.records.assign(numbers.Rest().begin(), numbers.Rest().end());

    PointList letter;
    const int32_t moved = AppendGlyph(letter, *fonts.MakeFont({}), 'a', penX, penY);
    Demand(moved == glyph.advance * (emUnits / Font::cellHeight), "the advance is not the font's");
    CheckOutline(letter, MostPoints(glyph));

    content.text = ShortString(text.c_str());
    OutlineHandle outline;
    LayoutStyledText(content, fonts, outline);
    CheckOutline(*outline, text.size() * std::max(MostPoints(glyph), MostPoints(BoxWithHole())));
    return 0;
}
