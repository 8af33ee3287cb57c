// The output stages' arithmetic: parameters of a frame as fixed-point words, and whether there is anything to do.
#pragma once

#include <cstdint>

#include "algorithms/lighting.h"

namespace clarivex {

/// Fixed-point factors of the luma cubic (c3 … c0) and of both chroma planes. Each is the low 16 bits of the rounded
/// product: extreme parameters fold over.
struct OutputConstants {
    int16_t c3 = 0;
    int16_t c2 = 0;
    int16_t c1 = 8192;
    int16_t c0 = 0;
    int16_t gU = 8192;
    int16_t oU = 0;
    int16_t gV = 8192;
    int16_t oV = 0;

    bool operator==(const OutputConstants&) const = default;
};

/// Nearest, ties to even. A product that no 32-bit number holds, or that is not a number, gives 0.
OutputConstants MakeOutputConstants(const LightingCorrection& params);

/// False when a frame without overlay comes out of the packed stage as a plain interleave: neutral parameters without
/// noise, or neutral constants with noise below 0.0001.
bool PackedNeedsWork(const LightingCorrection& params, float noiseLevel);

/// False when a frame without overlay comes out of the planar stage as a copy: neutral parameters without noise.
bool PlanarNeedsWork(const LightingCorrection& params, float noiseLevel);

}  // namespace clarivex
