#include "simd/scalar_lanes.h"
#include "tests/simd/lanes_checks.inl"

namespace clarivex {

int32_t CheckScalarLanes(LaneFault* faults, int32_t room) { return LanesCheck<ScalarLanes>(faults, room).Run(); }

}  // namespace clarivex
