// Noise reduction of a frame: which kernels smooth which axis in front of the scaler, and how strongly.
#pragma once

#include "algorithms/sharpen_params.h"
#include "engine/engine_settings.h"

namespace clarivex {

/// The kernels in front of the scaler of one axis.
struct PreStageGains {
    bool gated = false;  ///< gatedH, gatedV: the gated kernel runs first
    PreKernel kernel = PreKernel::none;
    SharpenParams narrow;
    SharpenParams wide;

    bool IsOn() const { return gated || kernel != PreKernel::none; }
};

struct NoiseReduction {
    double knee = 0.0;  ///< size of detail below which it counts as noise
    PreStageGains rows;
    PreStageGains columns;
    bool smoothsChroma = false;
    SharpenParams chroma;  ///< of the narrow kernel, along rows and columns
};

/// None where both axes are doubled.
NoiseReduction PlanNoiseReduction(const NoiseReductionSettings& settings, const ScaleModes& modes);

}  // namespace clarivex
