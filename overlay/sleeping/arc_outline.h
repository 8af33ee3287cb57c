// A filled sector as an outline, which a text element could show in place of its text. The caption has none.
#pragma once

#include <cstdint>

#include "overlay/point_list.h"

namespace clarivex {

/// Appends a filled sector around the origin, clockwise from straight up, in steps of 0.1 radian.
///
/// radius  pixels of a font of cell height 256
/// turn    65536 is a full circle
void AppendArc(PointList& outline, int32_t radius, int32_t turn);

}  // namespace clarivex
