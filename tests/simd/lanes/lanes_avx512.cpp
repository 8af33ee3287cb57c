#include "simd/avx512_lanes.h"
#include "tests/simd/lanes/lane_checks.inl"

namespace clarivex {

constinit const LaneChecks avx512LaneChecks = {&avx512Kernels, CheckLanes<Avx512Lanes>};

}  // namespace clarivex
