// The element that a text's mask is made of: one outline, rasterised.
#pragma once

#include <cstdint>

#include "overlay/element.h"
#include "overlay/mask_bitmap.h"
#include "overlay/point_list.h"
#include "overlay/rasteriser.h"
#include "overlay/rectangle.h"

namespace clarivex {

/// An outline in a mask. Painted as a whole or not at all, whenever outline, transform or mask size changed.
class OutlineShape : public MaskElement {
public:
    /// Null is no outline. One that is held already is taken to be the same.
    void SetOutline(const OutlineHandle& newOutline);
    void SetTransform(const OutlineTransform& newTransform);

    /// The box around the outline in 1/256 pixel, without the transform's offset and limited to ±2³⁰; all zero without
    /// points.
    Rectangle ScaledBounds(const OutlineTransform& by) const;

    void SetSize(int32_t newWidth, int32_t newHeight, float aspect) override;
    bool Update(const ComposeFrame& frame) override;
    void AdjustPaintRegion(Region& region) override { region = content; }
    void Paint(MaskBitmap& mask, const Region& region, const ComposeFrame& frame) override;

private:
    OutlineHandle outline;
    Rectangle bounds;  // of its points, the last ones included
    OutlineTransform transform;
    int32_t width = 0;
    int32_t height = 0;
    bool dirty = false;
};

}  // namespace clarivex
