#include "simd/make_table.inl"
#include "simd/scalar_lanes.h"

namespace clarivex {

constinit const KernelTable scalarKernels = MakeTable<ScalarLanes>("scalar");

}  // namespace clarivex
