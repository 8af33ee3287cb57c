#include "overlay/text_element.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "overlay/compositor.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

/// Whole pixels around a box in 1/256 pixel; columns in fours, so that a row of the mask begins and ends on a word.
Rectangle PixelsAround(const Rectangle& box) {
    if (box.right <= box.left || box.bottom <= box.top) return {};
    return {(box.left >> 8) & ~3, box.top >> 8, (((box.right + 255) >> 8) + 3) & ~3, (box.bottom + 255) >> 8};
}

/// The part inside an image, as far as regions reach; without pixels where there is none.
Rectangle Inside(Rectangle rectangle, int32_t width, int32_t height) {
    rectangle.left = std::max(rectangle.left, 0);
    rectangle.top = std::max(rectangle.top, 0);
    rectangle.right = std::max(std::min({rectangle.right, width, coordinateLimit}), rectangle.left);
    rectangle.bottom = std::max(std::min({rectangle.bottom, height, coordinateLimit}), rectangle.top);
    return rectangle;
}

}  // namespace

TextElement::TextElement(FontEngine* textFonts) : fonts(textFonts) { maskGroup.AddChild(shape); }

void TextElement::SetText(const char* newText) {
    if (std::strcmp(text.Text(), newText) == 0) return;
    text.Assign(newText);
    layoutDirty = true;
}

void TextElement::SetColour(const TextColour& newColour) {
    if (newColour == colour) return;
    colour = newColour;
    repaint = true;
}

void TextElement::SetSize(int32_t newWidth, int32_t newHeight, float newAspect) {
    width = newWidth;
    height = newHeight;
    aspect = newAspect;
}

bool TextElement::Update(const ComposeFrame& frame) {
    if (ShowsNothing()) {
        content.Clear();
        changed.Clear();
        return true;
    }
    if (layoutDirty) LayOut();
    CutOut();
    ComposeMask(frame);
    return true;
}

void TextElement::LayOut() {
    if (fonts) LayoutText(text, *fonts, outline);
    shape.SetOutline(outline);
    repaint = true;
    layoutDirty = false;
}

/// Fits the mask around the text and moves the outline into it.
void TextElement::CutOut() {
    cutOut = Inside(PixelsAround(shape.ScaledBounds(placement)), width, height);
    OutlineTransform inMask = placement;
    inMask.offsetX = -cutOut.left;
    inMask.offsetY = -cutOut.top;
    shape.SetTransform(inMask);
}

void TextElement::ComposeMask(const ComposeFrame& frame) {
    Composition composition = Compose(maskGroup, mask, cutOut.Width(), cutOut.Height(), aspect, frame);
    content = std::move(composition.content);
    changed = std::move(composition.damage);
    RegionTranslate(content, cutOut.left, cutOut.top);
    RegionTranslate(changed, cutOut.left, cutOut.top);
    if (repaint) changed = content;
    repaint = false;
}

void TextElement::Paint(YuvaImage& image, const Region& region, const ComposeFrame& frame) {
    const auto terms = ColourTerms(colour);
    for (const Rectangle rectangle : RegionRects(region)) {
        const int32_t left = rectangle.left;
        for (int32_t y = rectangle.top; y < rectangle.bottom; ++y) {
            const uint8_t* coverage = mask.Row(y - cutOut.top) + left - cutOut.left;
            frame.kernels.paintCoverage(coverage, terms.data(), image.Pixel(left, y), rectangle.Width());
        }
    }
}

}  // namespace clarivex
