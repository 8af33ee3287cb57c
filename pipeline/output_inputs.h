// What the output stages read besides the picture.
#pragma once

#include <cstdint>

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

/// Column of the noise table that belongs to the first column of the current frame.
inline int32_t NoiseColumnOf(const NoiseTable& noise) { return noise.offsets.x & ~7 & 255; }

/// Row of the noise table that belongs to picture row y of the current frame.
inline int32_t NoiseRowOf(const NoiseTable& noise, int32_t y) {
    return static_cast<int32_t>((static_cast<uint32_t>(noise.offsets.y) + static_cast<uint32_t>(y)) & 255U);
}

}  // namespace clarivex
