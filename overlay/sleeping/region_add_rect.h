// A region that grows by rectangles. The caption's regions come out of set operations alone.
#pragma once

#include "overlay/rectangle.h"
#include "overlay/region.h"

namespace clarivex {

/// Adds a rectangle, with the limits of Region::OfRectangle.
void RegionAddRect(Region& region, const Rectangle& rectangle);

}  // namespace clarivex
