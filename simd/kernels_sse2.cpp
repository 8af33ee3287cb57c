#include "simd/make_table.inl"
#include "simd/sse2_lanes.h"

namespace clarivex {

constinit const KernelTable sse2Kernels = MakeTable<Sse2Lanes>("sse2");

}  // namespace clarivex
