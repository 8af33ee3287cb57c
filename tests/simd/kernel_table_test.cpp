// The choice of a kernel table.
#include <gtest/gtest.h>

#include "simd/kernel_table.h"

namespace clarivex {
namespace {

TEST(SelectKernels, TakesTheWidestThatMayRun) {
    EXPECT_EQ(&SelectKernels({}), &scalarKernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true}), &sse2Kernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true, .avx2 = true}), &avx2Kernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true, .avx2 = true, .avx512 = true}), &avx512Kernels);
}

TEST(AllKernels, ArePlainestFirstAndWhole) {
    ASSERT_EQ(AllKernels().size(), 4U);
    EXPECT_EQ(AllKernels().front(), &scalarKernels);
    EXPECT_EQ(AllKernels().back(), &avx512Kernels);
    for (const KernelTable* table : AllKernels()) {
        const auto* first = reinterpret_cast<const uintptr_t*>(table);
        for (size_t entry = 0; entry < sizeof(KernelTable) / sizeof(uintptr_t); ++entry)
            EXPECT_NE(first[entry], 0U) << "entry " << entry;
    }
}

}  // namespace
}  // namespace clarivex
