#include "overlay/caption_block.h"

namespace clarivex {

CaptionBlock::CaptionBlock(FontEngine* fonts) : text(fonts), shadow(fonts) {
    group.AddChild(shadow);
    group.AddChild(text);
}

void CaptionBlock::SetCaption(const char* newText) {
    text.SetText(newText);
    shadow.SetText(newText);
}

void CaptionBlock::SetColours(const CaptionColours& colours) {
    text.SetColour(colours.text);
    shadow.SetColour(colours.shadow);
}

void CaptionBlock::SetPlacement(const CaptionPlacement& placement) {
    text.SetPlacement(placement.text);
    shadow.SetPlacement(placement.shadow);
}

}  // namespace clarivex
