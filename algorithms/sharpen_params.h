// The gain curve of the detail kernels and the integer coefficients that follow from it.
#pragma once

#include <cstdint>

namespace clarivex {

/// Gain curve of a detail kernel: a base gain, and above a knee an extra gain. All zero: the kernel is off.
struct SharpenParams {
    float baseGainLog2 = 0.0F;   ///< log2 of (1 + base gain)
    float extraGainLog2 = 0.0F;  ///< added to baseGainLog2 gives log2 of (1 + gain above the knee)
    float knee = 0.0F;           ///< size of the measured detail at which the extra gain starts, in kernel output units
};

/// Integer gains on the narrow measure (second difference) and the wide one (seven samples). Knees are never negative
/// and already multiplied by their extra gain.
struct SharpenCoefficients {
    int32_t narrowBase = 0;
    int32_t narrowExtra = 0;
    int32_t narrowKnee = 0;
    int32_t wideBase = 0;
    int32_t wideExtra = 0;
    int32_t wideKnee = 0;
};

/// Whether a kernel with these gains changes anything.
bool IsSharpenActive(const SharpenParams& params);

/// Coefficients of the passes that measure narrow detail only: gains in sixteenths of 5, knee at most 16383.
SharpenCoefficients DeriveNarrowCoefficients(const SharpenParams& params);

/// Coefficients of the passes with both measures. Where both curves smooth, the gains are reduced against each other.
SharpenCoefficients DeriveSharpenCoefficients(const SharpenParams& narrow, const SharpenParams& wide, float narrowScale,
                                              float wideScale);

}  // namespace clarivex
