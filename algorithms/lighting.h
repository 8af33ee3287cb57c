// Automatic lighting control: finds black and white of a frame, follows them and tells the linear correction.
#pragma once

#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

struct KernelTable;

/// Levels that are followed from frame to frame, in 8-bit luma units.
struct LightingState {
    float trackedBlack = 16.0F;
    float trackedWhite = 235.0F;
};

/// Corrections of the three planes, and after ToneCurve the parameters of the output stage:
/// luma' = cubic·Y³ + square·Y² + lumaGain·Y + lumaOffset, chroma' = gain·C + offset, with samples 0 … 255.
struct LightingCorrection {
    float square = 0.0F;
    float lumaGain = 1.0F;
    float lumaOffset = 0.0F;
    float cubic = 0.0F;
    float chromaGainU = 1.0F;
    float chromaOffsetU = 0.0F;
    float chromaGainV = 1.0F;
    float chromaOffsetV = 0.0F;
};

/// Analyses one frame, moves `state` towards its levels and returns the correction that maps these to video black and
/// white.
///
/// planes   the decoded frame, 4:2:0; only samples inside it are read. Any size from 1 × 1; a frame smaller than its
///          margins counts as empty.
/// elapsed  time since the frame analysed before, in ticks of 100 ns; from 4.99 s on the new levels are taken outright.
LightingCorrection AnalyseLighting(const PictureView& planes, int64_t elapsed, LightingState& state,
                                   const KernelTable& kernels);

}  // namespace clarivex
