// Every operation of the lanes at every width against plain integers, every kernel at every width against the scalar form, the scalar form against plain integers, checks that these
// comparisons see a fault, and the choice of a table.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/simd/kernel_checks.h"
#include "tests/simd/lane_checks.h"
#include "tests/simd/plain_kernels.h"
#include "tests/simd/runs_here.h"
#include "tests/support/guarded_rows.h"

namespace clarivex {
namespace {

constexpr std::array<Comparison, 4> comparisons{{
    {&plainKernels, &scalarKernels},
    {&scalarKernels, &sse2Kernels},
    {&scalarKernels, &avx2Kernels},
    {&scalarKernels, &avx512Kernels},
}};

class EveryWidth : public testing::TestWithParam<std::tuple<Comparison, KernelCheck>> {};

TEST_P(EveryWidth, GivesTheBytesOfItsReference) {
    const auto& [tables, check] = GetParam();
    if (!RunsHere(*tables.tested)) GTEST_SKIP() << tables.tested->name << " cannot run on this processor";
    EXPECT_TRUE(check.run(tables));
}

INSTANTIATE_TEST_SUITE_P(Kernels, EveryWidth,
                         testing::Combine(testing::ValuesIn(comparisons),
                                          testing::ValuesIn(AllKernelChecks().begin(), AllKernelChecks().end())),
                         [](const auto& test) {
                             return std::string(std::get<0>(test.param).tested->name) + "_" +
                                    std::get<1>(test.param).name;
                         });

class EveryWidthOfLanes : public testing::TestWithParam<const LaneChecks*> {};

TEST_P(EveryWidthOfLanes, MeansTheSame) {
    const LaneChecks& lanes = *GetParam();
    if (!RunsHere(*lanes.kernels)) GTEST_SKIP() << lanes.kernels->name << " cannot run on this processor";
    std::mt19937 random(1);
    for (int32_t round = 0; round < 500 && !HasFailure(); ++round)
        for (const Fill fill : allFills) {
            LaneSamples samples;
            for (auto& row : samples.words)
                FillSamples(row, LaneSamples::mostLanes, fill, INT16_MIN, INT16_MAX, random);
            for (auto& row : samples.bytes) FillSamples(row, 2 * LaneSamples::mostLanes, fill, 0, 255, random);
            lanes.run(samples, [](const char* operation, int32_t element, int32_t actual, int32_t expected) {
                ADD_FAILURE() << operation << ": element " << element << " is " << actual << ", not " << expected;
            });
        }
}

INSTANTIATE_TEST_SUITE_P(Kernels, EveryWidthOfLanes,
                         testing::Values(&scalarLaneChecks, &sse2LaneChecks, &avx2LaneChecks, &avx512LaneChecks),
                         [](const auto& test) { return std::string(test.param->kernels->name); });

/// A fault in one of the plain kernels.
struct Fault {
    const char* name;
    const char* kernel;
    void (*put)(KernelTable& table);
};

constexpr Fault faults[] = {
    {"one byte too many", "interleaveAndBlend",
     [](KernelTable& table) {
         table.interleave = [](const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t width) {
             plainKernels.interleave(a, b, out, width);
             out[2 * width] ^= 1;
         };
     }},
    {"a write behind the slack", "splitAndExpandRow",
     [](KernelTable& table) {
         table.expandRow = [](const uint8_t* row, int16_t* words, int32_t width) {
             plainKernels.expandRow(row, words, width);
             words[width + slackBehind] = 0;
         };
     }},
    {"slack that changes the result", "limitEdges",
     [](KernelTable& table) {
         table.limitEdges = [](const uint8_t* in, uint8_t* out, int32_t width, const EdgeLimits& limits) {
             plainKernels.limitEdges(in, out, width, limits);
             out[0] = in[-1];
         };
     }},
};

TEST(EveryWidthHarness, SeesFaults) {
    for (const Fault& fault : faults) {
        KernelTable table = plainKernels;
        table.name = "faulty";
        fault.put(table);
        EXPECT_FALSE(KernelCheckNamed(fault.kernel).run({&plainKernels, &table})) << fault.name;
    }
}

TEST(SelectKernels, TakesTheWidestThatMayRun) {
    EXPECT_EQ(&SelectKernels({}), &scalarKernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true}), &sse2Kernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true, .avx2 = true}), &avx2Kernels);
    EXPECT_EQ(&SelectKernels({.sse2 = true, .avx2 = true, .avx512 = true}), &avx512Kernels);
}

}  // namespace
}  // namespace clarivex
