#include "simd/scalar_lanes.h"
#include "tests/simd/lanes/lane_checks.inl"

namespace clarivex {

constinit const LaneChecks scalarLaneChecks = {&scalarKernels, CheckLanes<ScalarLanes>};

}  // namespace clarivex
