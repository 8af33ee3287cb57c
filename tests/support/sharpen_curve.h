// Sharpening curves by the three values that the kernels read.
#pragma once

#include "algorithms/sharpen_params.h"

namespace clarivex {

inline SharpenParams Curve(float baseGainLog2, float extraGainLog2, float knee) {
    SharpenParams params;
    params.baseGainLog2 = baseGainLog2;
    params.extraGainLog2 = extraGainLog2;
    params.knee = knee;
    return params;
}

}  // namespace clarivex
