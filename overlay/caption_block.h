// The caption in the image: a text over its shadow.
#pragma once

#include <cstdint>

#include "overlay/caption_style.h"
#include "overlay/element.h"
#include "overlay/text_element.h"

namespace clarivex {

class CaptionBlock : public ImageElement {
public:
    /// fonts  null for a caption that stays empty; has to outlive the block
    explicit CaptionBlock(FontEngine* fonts);

    void SetCaption(const char* newText);
    void SetColours(const CaptionColours& colours);
    void SetPlacement(const CaptionPlacement& placement);

    ImageGroup* GetGroup() override { return &group; }
    void SetSize(int32_t /*width*/, int32_t /*height*/, float /*aspect*/) override {}
    bool Update(const ComposeFrame& /*frame*/) override { return false; }

private:
    TextElement text;
    TextElement shadow;
    ImageGroup group;
};

}  // namespace clarivex
