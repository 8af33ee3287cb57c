// What the output stages read besides the picture.
#pragma once

#include "algorithms/lighting.h"
#include "overlay/overlay_tiles.h"
#include "pipeline/frame_workspace.h"
#include "pipeline/noise_table.h"

namespace clarivex {

/// What both output stages read besides the picture.
struct OutputStageInputs {
    const LightingCorrection& params;
    const OverlayTiles& tiles;
    const NoiseTable& noise;
    const KernelTable& kernels;
    OutputScratch& scratch;
};

}  // namespace clarivex
