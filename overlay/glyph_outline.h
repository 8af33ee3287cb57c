// A character's contour records turned into points of an outline.
#pragma once

#include <cstdint>

#include "overlay/font_engine.h"
#include "overlay/point_list.h"

namespace clarivex {

/// Appends the contours of one character at the pen; splines become four lines each. A line feed moves the pen to the
/// start of the next line, a carriage return does nothing; both without asking the font.
///
/// A record that reaches beyond its buffer, or a curve beyond its record, ends the glyph: what was read before stays,
/// closed. Coordinates that no point can have become the nearest that one can.
///
/// penX, penY  outline units
/// result      advance in outline units
int32_t AppendGlyph(PointList& outline, Font& font, int8_t character, int32_t& penX, int32_t& penY);

}  // namespace clarivex
