#include "simd/kernel_table.h"

#include <array>

namespace clarivex {
namespace {

constexpr std::array<const KernelTable*, 5> tables{&scalarKernels, &sse2Kernels, &avx2Kernels, &avx512Kernels,
                                                   &avx512VbmiKernels};

}  // namespace

std::span<const KernelTable* const> AllKernels() { return tables; }

bool CanRun(const KernelTable& table, const InstructionSets& sets) {
    if (&table == &avx512VbmiKernels) return sets.avx512 && sets.avx512vbmi;
    if (&table == &avx512Kernels) return sets.avx512;
    if (&table == &avx2Kernels) return sets.avx2;
    return &table == &scalarKernels || sets.sse2;
}

const KernelTable& SelectKernels(const InstructionSets& sets) {
    const KernelTable* widest = &scalarKernels;
    for (const KernelTable* table : tables)
        if (CanRun(*table, sets)) widest = table;
    return *widest;
}

}  // namespace clarivex
