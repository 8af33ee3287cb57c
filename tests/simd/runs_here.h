// Which kernel tables this processor and operating system can run: tests skip the others by name.
#pragma once

#include "runtime/cpu_features.h"
#include "simd/kernel_table.h"

namespace clarivex {

inline bool RunsHere(const KernelTable& table) {
    const SimdSupport support = DetectSimdSupport();
    return CanRun(
        table,
        {.sse2 = support.sse2, .avx2 = support.avx2, .avx512 = support.avx512bw, .avx512vbmi = support.avx512vbmi});
}

}  // namespace clarivex
