#include "simd/avx2_lanes.h"
#include "tests/simd/lanes/lane_checks.inl"

namespace clarivex {

constinit const LaneChecks avx2LaneChecks = {&avx2Kernels, CheckLanes<Avx2Lanes>};

}  // namespace clarivex
