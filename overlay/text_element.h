// The element that shows a text in one colour: its outline as a mask, the mask painted into the image.
#pragma once

#include <cstdint>

#include "overlay/element.h"
#include "overlay/font_engine.h"
#include "overlay/mask_bitmap.h"
#include "overlay/outline_shape.h"
#include "overlay/rectangle.h"
#include "overlay/text_colour.h"
#include "overlay/text_layout.h"
#include "overlay/yuva_image.h"
#include "runtime/short_string.h"

namespace clarivex {

/// A text that is laid out once and rasterised when it moves, in a mask that is cut out to where it stands. A change of
/// colour only paints the mask again. Shows nothing before it has a text and a colour.
class TextElement : public ImageElement {
public:
    /// textFonts  null for a text that stays empty; has to outlive the element
    explicit TextElement(FontEngine* textFonts);

    void SetText(const char* newText);
    void SetColour(const TextColour& newColour);

    /// Where the outline stands in the image. An offset is ignored.
    void SetPlacement(const OutlineTransform& newPlacement) { placement = newPlacement; }

    void SetSize(int32_t newWidth, int32_t newHeight, float newAspect) override;
    bool Update(const ComposeFrame& frame) override;
    void Paint(YuvaImage& image, const Region& region, const ComposeFrame& frame) override;
    void Broadcast(intptr_t message) override { SceneUpkeep<MaskBitmap>::Broadcast(maskGroup, message); }

private:
    bool ShowsNothing() const { return colour.IsGone() || text.Length() == 1; }
    void LayOut();
    void CutOut();
    void ComposeMask(const ComposeFrame& frame);

    FontEngine* fonts;
    ShortString text;
    bool layoutDirty = true;
    OutlineHandle outline;
    OutlineTransform placement;
    TextColour colour;
    bool repaint = false;  // all of it, though the mask stays

    int32_t width = 0;
    int32_t height = 0;
    float aspect = 1.0F;

    Rectangle cutOut;  // where the mask stands in the image
    MaskBitmap mask;
    MaskGroup maskGroup;
    OutlineShape shape;
};

}  // namespace clarivex
