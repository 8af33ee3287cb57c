#include "simd/avx512_lanes.h"
#include "simd/make_table.inl"

namespace clarivex {

constinit const KernelTable avx512Kernels = MakeTable<Avx512Lanes>("avx512");

}  // namespace clarivex
