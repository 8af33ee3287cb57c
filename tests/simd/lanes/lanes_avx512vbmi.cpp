#include "simd/avx512vbmi_lanes.h"
#include "tests/simd/lanes/lane_checks.inl"

namespace clarivex {

constinit const LaneChecks avx512VbmiLaneChecks = {&avx512VbmiKernels, CheckLanes<Avx512VbmiLanes>};

}  // namespace clarivex
