// Turns outlines into coverage: lines add signed areas to a mask, and a running sum along its rows makes them coverage.
#pragma once

#include <cstdint>
#include <span>

#include "overlay/mask_bitmap.h"
#include "overlay/point_list.h"
#include "overlay/region.h"

namespace clarivex {

/// Where an outline stands in a mask: X = ((x · scaleX) >> 16) + translateX + 256 · offsetX, in 1/256 pixel; Y likewise.
struct OutlineTransform {
    int32_t scaleX = 0;  ///< 16.16, outline units to 1/256 pixel
    int32_t scaleY = 0;
    int32_t translateX = 0;  ///< 1/256 pixel
    int32_t translateY = 0;
    int32_t offsetX = 0;  ///< pixels; moves the outline into a cut-out mask
    int32_t offsetY = 0;

    bool operator==(const OutlineTransform&) const = default;
};

/// Adds the signed areas of one line, in outline units, to the bytes of the mask, modulo 256. Lines may lie anywhere;
/// what is left of the mask lands in its first column, what is right of, above or below it leaves no trace.
void RasteriseLine(const OutlineTransform& transform, MaskBitmap& mask, OutlinePoint from, OutlinePoint to);

/// Adds the coverage of an outline to a mask that is 0 inside the region; outer contours run clockwise on the screen.
/// The running sum covers the region's bounds as far as they lie inside the mask, so the region must cover the whole
/// outline. Where contours of one direction overlap, coverage wraps.
void PaintOutline(const OutlineTransform& transform, std::span<const OutlinePoint> points, MaskBitmap& mask,
                  const Region& region);

}  // namespace clarivex
