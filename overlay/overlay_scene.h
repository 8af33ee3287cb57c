// The scene over the video: an image with the caption, which fades in and out over the first frames.
#pragma once

#include <cstdint>

#include "overlay/caption_block.h"
#include "overlay/element.h"
#include "overlay/image_layer.h"

namespace clarivex {

/// Every update is a frame of the caption. After its end the scene stays empty, until it is restarted.
class OverlayScene : public TileElement {
public:
    /// fonts  null for a scene that stays empty; has to outlive it
    explicit OverlayScene(FontEngine* fonts);

    /// The next update is the caption's first frame.
    void Restart() { frame = 0; }

    TileGroup* GetGroup() override { return &group; }
    void SetSize(int32_t newWidth, int32_t newHeight, float aspect) override;
    bool Update(const ComposeFrame& composeFrame) override;

private:
    int32_t frame = 0;  // that was updated last; counts to the caption's end only
    int32_t width = 0;
    int32_t height = 0;
    float pixelAspect = 1.0F;
    ImageLayer layer;
    CaptionBlock caption;
    TileGroup group;
};

}  // namespace clarivex
