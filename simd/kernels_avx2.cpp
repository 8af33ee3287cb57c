#include "simd/avx2_lanes.h"
#include "simd/make_table.inl"

namespace clarivex {

constinit const KernelTable avx2Kernels = MakeTable<Avx2Lanes>("avx2");

}  // namespace clarivex
