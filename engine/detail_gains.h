// Noise reduction and detail gains of a frame: which kernels run on which axis, and how strongly.
#pragma once

#include <cstdint>

#include "engine/enhancement_engine.h"
#include "engine/strength.h"

namespace clarivex {

/// Level of noise reduction of a frame and the knee that follows from it.
struct NoiseReduction {
    double level = 0.0;
    double knee = 0.0;
    SharpenParams smoothing;  ///< for the chroma planes, where the level asks for it
    bool smoothsChroma = false;
};

/// Fills the pre-stage records of both axes in `stages`.
///
/// bypass  the picture is too large: no noise reduction.
NoiseReduction SetUpNoiseReduction(const EngineSettings& settings, ScaleModes modes, bool bypass,
                                   StageSettings& stages);

/// What the gains of the stages behind the scaler depend on.
struct DetailInputs {
    ScaleModes modes;
    Strength strength;
    double noiseKnee = 0.0;
    int32_t width = 0;
    int32_t height = 0;
    float aspect = 1.0F;  ///< pixel aspect of the scaled picture
    bool bypass = false;
};

/// Adds to the post-scale gain records in `stages` and returns the strength-dependent part of the output noise.
float SetUpDetailGains(const EngineSettings& settings, const DetailInputs& inputs, StageSettings& stages);

}  // namespace clarivex
