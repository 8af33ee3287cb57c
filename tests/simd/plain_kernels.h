// Kernels once more, sample by sample in plain integers: what the scalar kernels are compared with.
#pragma once

#include "simd/kernel_table.h"

namespace clarivex {

/// Reads and writes exactly what the kernels' contracts name, without lanes, blocks or tables. Null are kernels whose stage
/// has a plain form of its own, which holds for all widths: those of chroma and of the output stages, and sharpenColumns.
extern const KernelTable plainKernels;

/// The centred word of the row filters: the signed sample, raised by one from the middle on, in both bytes.
int32_t PlainCentred(int32_t sample);

}  // namespace clarivex
