#include "simd/avx2_lanes.h"
#include "tests/simd/lanes_checks.inl"

namespace clarivex {

int32_t CheckAvx2Lanes(LaneFault* faults, int32_t room) { return LanesCheck<Avx2Lanes>(faults, room).Run(); }

}  // namespace clarivex
