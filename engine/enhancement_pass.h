// The one way into the engine: a decoded frame goes in, an enhanced one comes out.
#pragma once

#include "engine/engine_state.h"
#include "engine/pass_plan.h"

namespace clarivex {

/// What a pass has come to.
struct PassResult {
    bool planesWritten = false;     ///< false: the caller is to use the source as it stands
    FrameSize written;              ///< luma samples from the upper left that were written, 0 × 0 for none
    float aspect = 1.0F;            ///< pixel aspect of the result
    float noiseAmplitude = 0.0F;    ///< of the output noise
    LightingCorrection correction;  ///< linear, of the frame's levels
};

/// Does to one frame what its plan says. Not re-entrant for one state; different states run at once.
///
/// source  4:2:0 planes of the size that the plan was made for. Strides at least the width; see SourceImage for `end`.
/// target  planes of at least plan.target, strides a multiple of 64 (luma) and 32 (chroma) samples, 16 spare rows; only
///         plan.planes are written. Not looked at when the plan writes nothing. Must not overlap the source.
/// throws  what MemoryShortage throws; taps and levels are then those of the frame, the target is undefined
PassResult RunPass(const PassPlan& plan, const SourceImage& source, const ImagePlanes& target, EngineState& state,
                   const KernelTable& kernels);

}  // namespace clarivex
