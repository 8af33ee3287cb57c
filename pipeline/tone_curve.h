// The fixed contrast curve and saturation that every enhanced frame gets on top of its lighting correction.
#pragma once

#include "algorithms/lighting.h"
#include "engine/engine_settings.h"

namespace clarivex {

/// Turns the linear correction of a frame, in place, into the parameters of the output stage. With biases of 50 and no
/// slopes it stays what it is, up to rounding; a bent curve drops the incoming `cubic` and `square`.
void ToneCurve(const ToneSettings& settings, bool lightingEnabled, LightingCorrection& correction);

}  // namespace clarivex
