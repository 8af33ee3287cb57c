// The one strength that a frame is enhanced with, and what follows from it and the picture's size.
#pragma once

#include <cstdint>

#include "engine/enhancement_engine.h"
#include "engine/tuning_tables.h"

namespace clarivex {

/// Scaling of both axes: 0 none, 1 three halves, 2 twofold.
struct ScaleModes {
    int32_t horizontal = 0;
    int32_t vertical = 0;
};

/// What remains of the wanted modes for a picture of width × height: too large ones are scaled less. Pairs of modes that
/// no scaler has count as no scaling.
ScaleModes LimitModes(ScaleModes wanted, int32_t width, int32_t height);

/// Pictures of this many samples and more are not enhanced at all, unless that rule is off.
constexpr int64_t bypassArea = 1238400;

/// A strength of 0 … 8.9999 split into its level and what is above it.
struct Strength {
    double value = 0.0;
    int32_t level = 0;
    double fraction = 0.0;
};

/// Strength of a frame from the engine's sharpness: positive ones are reduced for small pictures, negative ones stand
/// for their absolute value, and what is no number counts as 0.
Strength StrengthOf(float sharpness, int32_t width, int32_t height);

/// Entry `column` of `rows` at a strength: mixed between the rows of its level and the next.
double MixRows(const SharpnessRows& rows, const Strength& strength, size_t column);

/// Designs the tap sets of both axes and keeps them in the engine.
void DesignFilters(EnhancementEngine& engine, const Strength& strength, int32_t horizontalMode);

}  // namespace clarivex
