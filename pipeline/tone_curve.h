// The fixed contrast curve and saturation that every enhanced frame gets on top of its lighting correction.
#pragma once

#include <cstdint>

#include "algorithms/lighting.h"

namespace clarivex {

/// What the curve follows from.
///
/// active   false takes every bias as 50 and both slopes as 0
/// biases   adjustments centred on 50; A bends the white end, B the black end and brightness, C the saturation
/// slopes   hundredths added to the slope of 1 at black and at white; only with lightingEnabled
struct ToneSettings {
    bool active = true;
    int32_t colourBiasA = 50;
    int32_t colourBiasB = 50;
    int32_t colourBiasC = 50;
    int32_t blackSlope = 9;
    int32_t whiteSlope = 36;
    bool lightingEnabled = true;
};

/// Turns the linear correction of a frame, in place, into the parameters of the output stage. With biases of 50 and no
/// slopes it stays what it is, up to rounding; a bent curve drops the incoming `cubic` and `square`.
void ToneCurve(const ToneSettings& settings, LightingCorrection& correction);

}  // namespace clarivex
