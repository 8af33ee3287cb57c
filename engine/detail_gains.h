// Gains of the detail stages behind the scaler, from strength and settings.
#pragma once

#include "algorithms/sharpen_params.h"
#include "engine/engine_settings.h"
#include "engine/strength.h"

namespace clarivex {

/// What the gains depend on besides the settings.
struct DetailInputs {
    ScaleModes modes;
    Strength strength;
    double noiseKnee = 0.0;
    FrameSize size;       ///< of the picture that is enlarged
    float aspect = 1.0F;  ///< pixel aspect of the enlarged picture
    float ditherGain = 0.0F;
};

/// Gain curves behind the scaler, and the strength-dependent part of the output noise.
struct DetailGains {
    SharpenParams postNarrowH;  ///< along the rows
    SharpenParams postNarrowV;  ///< down the columns
    SharpenParams postWide;     ///< along the rows
    float outputNoise = 0.0F;
};

DetailGains PlanDetailGains(const DetailSettings& settings, const DetailInputs& inputs);

}  // namespace clarivex
