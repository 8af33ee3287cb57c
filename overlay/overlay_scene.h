// The scene over the video: an image with the caption, which fades in and out over the first frames.
#pragma once

#include <cstdint>

#include "overlay/caption_block.h"
#include "overlay/caption_run.h"
#include "overlay/element.h"
#include "overlay/image_layer.h"

namespace clarivex {

/// Shows the frame of the caption that it is told, and nothing from the caption's end on.
class OverlayScene : public TileElement {
public:
    /// fonts  null for a scene that stays empty; has to outlive it
    explicit OverlayScene(FontEngine* fonts);

    /// The frame that the next update shows, from 1 on, or captionHidden.
    void SetFrame(int32_t newFrame);

    TileGroup* GetGroup() override { return &group; }
    void SetSize(int32_t newWidth, int32_t newHeight, float aspect) override;
    bool Update(const ComposeFrame& composeFrame) override;

private:
    int32_t frame = captionHidden;
    int32_t width = 0;
    int32_t height = 0;
    float pixelAspect = 1.0F;
    ImageLayer layer;
    CaptionBlock caption;
    TileGroup group;
};

}  // namespace clarivex
