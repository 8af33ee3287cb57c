#include "simd/sse2_lanes.h"
#include "tests/simd/lanes_checks.inl"

namespace clarivex {

int32_t CheckSse2Lanes(LaneFault* faults, int32_t room) { return LanesCheck<Sse2Lanes>(faults, room).Run(); }

}  // namespace clarivex
