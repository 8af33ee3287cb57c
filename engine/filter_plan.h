// Which kernels the taps of the resamplers are sampled from, and the sampling.
#pragma once

#include "algorithms/filter_design.h"
#include "engine/engine_settings.h"
#include "engine/strength.h"

namespace clarivex {

/// The prototype kernels of both axes.
struct FilterPlan {
    PrototypeDesign horizontal;
    SpectrumTrim horizontalTrim = SpectrumTrim::none;
    PrototypeDesign vertical;
};

/// The kernel of the columns follows the strength, that of the rows does not.
FilterPlan PlanFilters(const EngineSettings& settings, const Strength& strength, AxisScale horizontal);

/// Tap sets of both axes, kept between frames.
struct FilterTaps {
    PrototypeKernel horizontalResponse{};  ///< what twofold taps are sampled from
    ThreeHalvesTaps horizontal;            ///< tapsHorizontal
    ThreeHalvesTaps vertical;              ///< tapsVertical
};

/// Takes well under a millisecond, so that taps are designed when they change and not for every frame.
FilterTaps DesignTaps(const FilterPlan& plan);

}  // namespace clarivex
