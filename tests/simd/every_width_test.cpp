// Every kernel at every width against the scalar form, the scalar form against plain integers, and checks that these
// comparisons see a fault.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/simd/kernel_checks.h"
#include "tests/simd/plain_kernels.h"
#include "tests/simd/runs_here.h"

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

/// The plain kernels with one fault in them, and what the check of that kernel says.
testing::AssertionResult CheckFaulty(const char* kernel, KernelTable faulty) {
    faulty.name = "faulty";
    return KernelCheckNamed(kernel).run({&plainKernels, &faulty});
}

TEST(EveryWidthHarness, SeesOneByteTooMany) {
    KernelTable table = plainKernels;
    table.interleave = [](const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t width) {
        plainKernels.interleave(a, b, out, width);
        out[2 * width] ^= 1;
    };
    EXPECT_FALSE(CheckFaulty("interleave", table));
}

TEST(EveryWidthHarness, SeesAByteBeforeTheRow) {
    KernelTable table = plainKernels;
    table.splitRow = [](const uint8_t* row, int16_t* even, int16_t* odd, int32_t count) {
        plainKernels.splitRow(row, even, odd, count);
        odd[-1] = 0;
    };
    EXPECT_FALSE(CheckFaulty("splitRow", table));
}

TEST(EveryWidthHarness, SeesAWriteBehindTheSlack) {
    KernelTable table = plainKernels;
    table.expandRow = [](const uint8_t* row, int16_t* words, int32_t width) {
        plainKernels.expandRow(row, words, width);
        words[width + slackBehind] = 0;
    };
    EXPECT_FALSE(CheckFaulty("expandRow", table));
}

TEST(EveryWidthHarness, SeesAWrongLastSample) {
    KernelTable table = plainKernels;
    table.sharpenColumns = [](const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* out,
                              int32_t width, int16_t gain) {
        plainKernels.sharpenColumns(above, row, below, out, width, gain);
        if (width == 199) out[width - 1] ^= 1;
    };
    EXPECT_FALSE(CheckFaulty("sharpenColumns", table));
}

TEST(EveryWidthHarness, SeesSlackThatChangesTheResult) {
    KernelTable table = plainKernels;
    table.limitEdges = [](const uint8_t* in, uint8_t* out, int32_t width, const EdgeLimits& limits) {
        plainKernels.limitEdges(in, out, width, limits);
        out[0] = in[-1];
    };
    EXPECT_FALSE(CheckFaulty("limitEdges", table));
}

TEST(EveryWidthHarness, SeesSumsThatDoNotSaturate) {
    KernelTable table = plainKernels;
    table.enlargeColumns = [](const int16_t* const* rows, const int16_t* taps, uint8_t* out, int32_t width) {
        for (int32_t x = 0; x < width; ++x) {
            int32_t sum = 8192;
            for (int32_t k = 0; k < 8; ++k) sum += (taps[k] * rows[k][x]) >> 16;
            const int32_t sample = static_cast<int16_t>(sum) >> 6;
            out[x] = static_cast<uint8_t>(sample < 0 ? 0 : sample > 255 ? 255 : sample);
        }
    };
    EXPECT_FALSE(CheckFaulty("enlargeColumns", table));
}

TEST(EveryWidthHarness, SeesNoiseThatDoesNotWrap) {
    KernelTable table = plainKernels;
    table.toneLuma = [](const uint8_t* in, uint8_t* out, int32_t width, const LumaCurve& curve, const int16_t* pattern,
                        const int16_t* noise, int32_t noiseStart) {
        plainKernels.toneLuma(in, out, width, curve, pattern, noise, noiseStart == 248 ? 0 : noiseStart);
    };
    EXPECT_FALSE(CheckFaulty("toneLuma", table));
}

TEST(EveryWidthHarness, PassesTheReferenceItself) {
    for (const KernelCheck& check : AllKernelChecks())
        EXPECT_TRUE(check.run({&plainKernels, &plainKernels})) << check.name;
}

}  // namespace
}  // namespace clarivex
