// The instruction sets that this processor and operating system run.
#pragma once

#include <string_view>

#include "simd/kernel_table.h"

namespace clarivex {

/// What runs here.
InstructionSets RunnableSets();

/// The widest kernels of a name that run here, of "auto" the widest of all; null for an unknown name and for those that do not run.
const KernelTable* RunnableKernels(std::string_view name);

}  // namespace clarivex
