#include "simd/sse2_lanes.h"
#include "tests/simd/lanes/lane_checks.inl"

namespace clarivex {

constinit const LaneChecks sse2LaneChecks = {&sse2Kernels, CheckLanes<Sse2Lanes>};

}  // namespace clarivex
