// The detail kernels in front of a scaler, which smooth noise.
#pragma once

#include "algorithms/sharpen_params.h"
#include "engine/stage_kinds.h"
#include "runtime/planes.h"

namespace clarivex {

/// The gated kernel, then narrow or knee.
struct PreStage {
    bool gated = false;
    PreKernel kernel = PreKernel::none;
    SharpenCoefficients gains;

    bool IsOn() const { return gated || kernel != PreKernel::none; }
};

/// Along the rows of a strip of up to 16 rows, in place.
///
/// strip  part of a working image; see algorithms/sleeping/detail_strips.h for its edges
void SmoothRowStrip(const Plane& strip, const PreStage& preStage);

/// Down the columns of a whole plane, strip after strip of 16 columns, in place. Strips are whole: spare columns to the
/// right are read again by a pass along the rows.
///
/// plane  part of a working image
void SmoothColumnStrips(const Plane& plane, const PreStage& preStage);

}  // namespace clarivex
