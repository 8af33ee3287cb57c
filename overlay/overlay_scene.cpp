#include "overlay/overlay_scene.h"

#include "overlay/caption_style.h"

namespace clarivex {

OverlayScene::OverlayScene(FontEngine* fonts) : caption(fonts) {
    caption.SetCaption(CaptionText);
    layer.Images().AddChild(caption);
    group.AddChild(layer);
}

void OverlayScene::SetFrame(int32_t newFrame) {
    frame = newFrame;
    SetVisible(frame != captionHidden);
}

void OverlayScene::SetSize(int32_t newWidth, int32_t newHeight, float aspect) {
    width = newWidth;
    height = newHeight;
    pixelAspect = aspect;
}

bool OverlayScene::Update(const ComposeFrame& /*composeFrame*/) {
    caption.SetColours(ColoursOf(frame));
    caption.SetPlacement(PlaceCaption(width, height, pixelAspect));
    return true;
}

}  // namespace clarivex
