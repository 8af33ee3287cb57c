// The element that brings a painted image into the tiles.
#pragma once

#include <cstdint>

#include "overlay/element.h"
#include "overlay/overlay_tiles.h"
#include "overlay/yuva_image.h"

namespace clarivex {

/// An image of the tiles' size with a group of its own, composed in the update and converted where tiles are painted, in
/// whole groups of 8 columns. Holds no memory while nothing stands in the image.
class ImageLayer : public TileElement {
public:
    /// What the image shows.
    ImageGroup& Images() { return images; }

    void SetSize(int32_t newWidth, int32_t newHeight, float newAspect) override;
    bool Update(const ComposeFrame& frame) override;
    void AdjustPaintRegion(Region& region) override { RegionSnapX8(region); }

    /// Every rectangle begins with the same dither in its first row.
    void Paint(OverlayTiles& tiles, const Region& region, const ComposeFrame& frame) override;

    void Broadcast(intptr_t message) override { SceneUpkeep<YuvaImage>::Broadcast(images, message); }

private:
    ImageGroup images;
    YuvaImage image;
    int32_t width = 0;
    int32_t height = 0;
    float aspect = 1.0F;
};

}  // namespace clarivex
