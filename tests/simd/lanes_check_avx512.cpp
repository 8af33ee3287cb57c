#include "simd/avx512_lanes.h"
#include "tests/simd/lanes_checks.inl"

namespace clarivex {

int32_t CheckAvx512Lanes(LaneFault* faults, int32_t room) { return LanesCheck<Avx512Lanes>(faults, room).Run(); }

}  // namespace clarivex
