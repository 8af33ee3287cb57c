// Every kernel once more, sample by sample in plain integers: what the scalar kernels are compared with.
#pragma once

#include "simd/kernel_table.h"

namespace clarivex {

/// Reads and writes exactly what the kernels' contracts name, without lanes, blocks or tables.
extern const KernelTable plainKernels;

}  // namespace clarivex
