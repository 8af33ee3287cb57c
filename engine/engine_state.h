// What of the engine outlives a frame: taps, levels, figures and working memory. One for each stream.
#pragma once

#include "algorithms/lighting.h"
#include "engine/engine_workspace.h"
#include "engine/filter_plan.h"
#include "engine/timing_block.h"

namespace clarivex {

struct EngineState {
    bool filtersDirty = true;  ///< the next pass designs the taps anew
    FilterTaps taps;
    LightingState lighting;
    TimingBlock timing;
    EngineWorkspace workspace;
};

}  // namespace clarivex
