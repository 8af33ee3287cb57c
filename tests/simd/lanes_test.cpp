// Every operation of every set of lanes against plain integers.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "tests/simd/lanes_check.h"
#include "tests/simd/runs_here.h"

namespace clarivex {
namespace {

struct LanesCase {
    const KernelTable* table;
    CheckLanesFunction check;
};

class EveryLanes : public testing::TestWithParam<LanesCase> {};

TEST_P(EveryLanes, ComputesWhatPlainIntegersGive) {
    const auto& [table, check] = GetParam();
    if (!RunsHere(*table)) GTEST_SKIP() << table->name << " cannot run on this processor";
    std::array<LaneFault, 20> faults{};
    const int32_t count = check(faults.data(), static_cast<int32_t>(faults.size()));
    for (int32_t i = 0; i < std::min(count, static_cast<int32_t>(faults.size())); ++i) {
        const LaneFault& fault = faults[static_cast<size_t>(i)];
        ADD_FAILURE() << table->name << ": " << fault.operation << ", lane " << fault.lane << ": " << fault.actual
                      << ", not " << fault.expected;
    }
    EXPECT_EQ(count, 0);
}

INSTANTIATE_TEST_SUITE_P(Lanes, EveryLanes,
                         testing::Values(LanesCase{&scalarKernels, CheckScalarLanes},
                                         LanesCase{&sse2Kernels, CheckSse2Lanes},
                                         LanesCase{&avx2Kernels, CheckAvx2Lanes},
                                         LanesCase{&avx512Kernels, CheckAvx512Lanes}),
                         [](const auto& test) { return std::string(test.param.table->name); });

}  // namespace
}  // namespace clarivex
