#include "runtime/cpu_features.h"

#include <gtest/gtest.h>

#include "runtime/sleeping/cpu_feature_word.h"

namespace clarivex {
namespace {

constexpr uint32_t Bit(int position) { return 1U << position; }

CpuRegisters WidestProcessor() {
    return {.leaf1Ecx = Bit(27) | Bit(28),
            .leaf1Edx = Bit(25) | Bit(26),
            .leaf7Ebx = Bit(5) | Bit(16) | Bit(30) | Bit(31),
            .leaf7Ecx = Bit(1),
            .enabledState = 0xE7};
}

TEST(SimdSupportOf, NeedsEveryPartOfASetAndASystemThatSavesItsRegisters) {
    CpuRegisters registers = WidestProcessor();
    EXPECT_TRUE(SimdSupportOf(registers).avx512bw);
    EXPECT_TRUE(SimdSupportOf(registers).avx512vbmi);
    registers.leaf7Ecx = 0;
    EXPECT_TRUE(SimdSupportOf(registers).avx512bw);
    EXPECT_FALSE(SimdSupportOf(registers).avx512vbmi);
    registers = WidestProcessor();
    registers.enabledState = 0x67;  // masks and upper halves, but not the upper sixteen registers
    EXPECT_FALSE(SimdSupportOf(registers).avx512bw);
    EXPECT_TRUE(SimdSupportOf(registers).avx2);
    registers.enabledState = 0x03;
    EXPECT_FALSE(SimdSupportOf(registers).avx2);
    EXPECT_TRUE(SimdSupportOf(registers).sse2);
    for (const int part : {5, 16, 30, 31}) {
        registers = WidestProcessor();
        registers.leaf7Ebx &= ~Bit(part);
        EXPECT_FALSE(SimdSupportOf(registers).avx512bw) << part;
        EXPECT_FALSE(SimdSupportOf(registers).avx512vbmi) << part;
        EXPECT_EQ(SimdSupportOf(registers).avx2, part != 5) << part;
    }
    registers.leaf1Edx = 0;
    EXPECT_FALSE(SimdSupportOf(registers).sse2);
    EXPECT_FALSE(SimdSupportOf(registers).avx2);
}

TEST(CpuFeatureWord, KeepsTheFlagsOfThisProcessor) {
    const uint32_t flags = DetectCpuFeatures();
    EXPECT_EQ(CpuFeatureFlags(), flags);
    EXPECT_EQ((flags & featureSse2) != 0, DetectSimdSupport().sse2);
}

}  // namespace
}  // namespace clarivex
