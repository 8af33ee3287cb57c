// The cross stage behind a pass that walks down the columns.
#pragma once

#include "engine/cross_stage.h"

namespace clarivex {

/// Filters the columns of a plane over their whole height with two dead zones in a row, in place. Above the plane row 0 is
/// repeated, below it the last row.
void CrossColumns(const Plane& plane, const CrossGains& gains);

}  // namespace clarivex
