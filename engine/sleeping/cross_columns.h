// The cross stage behind a pass that walks down the columns.
#pragma once

#include "engine/cross_stage.h"

namespace clarivex {

/// Filters the strip's columns over their whole height with two dead zones in a row, in place. Above the strip row 0 is
/// repeated, below it the last row.
void CrossColumns(const Plane& strip, const CrossGains& gains);

}  // namespace clarivex
