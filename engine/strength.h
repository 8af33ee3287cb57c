// The one strength that a frame is enhanced with.
#pragma once

#include <cstdint>

#include "engine/tuning_tables.h"
#include "runtime/planes.h"

namespace clarivex {

/// A strength of 0 … 8.9999 split into its level and what is above it.
struct Strength {
    double value = 0.0;
    int32_t level = 0;
    double fraction = 0.0;
};

/// Strength of a frame from the sharpness that is set: positive ones are reduced for small pictures, negative ones stand
/// for their absolute value, and what is no number counts as 0.
Strength StrengthOf(float sharpness, const FrameSize& size);

/// Entry `column` of `rows` at a strength: mixed between the rows of its level and the next.
double MixRows(const SharpnessRows& rows, const Strength& strength, size_t column);

}  // namespace clarivex
