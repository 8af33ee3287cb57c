#include "simd/avx512_lanes.h"

// Behind the wider ones, which bring in the compiler's own header without its warnings.
#include "simd/avx2_lanes.h"
#include "simd/make_table.inl"

namespace clarivex {

// Groups of 64 rows fill the first-level cache, and where wide registers are worked on in halves nothing makes up for it. Rows
// go in groups of 32 instead, with half the width but twice the registers that AVX2 has.
constinit const KernelTable avx512Kernels = MakeTable<Avx512Lanes, Avx2Lanes>("avx512");

}  // namespace clarivex
