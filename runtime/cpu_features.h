// What the processor can do, and what of it the operating system lets us use.
#pragma once

#include <cstdint>

namespace clarivex {

/// Bits of FeatureFlagsOf.
constexpr uint32_t featureConditionalMove = 4;
constexpr uint32_t featureMmx = 8;
constexpr uint32_t featureSse = 16;  ///< or the extended multimedia instructions: rounded averages, store fence
constexpr uint32_t feature3dNow = 32;
constexpr uint32_t featureExtended3dNow = 64;
constexpr uint32_t featurePlainSse = 128;
constexpr uint32_t featureSse2 = 256;

/// The registers that processor features are read from; zero where the processor does not report a leaf.
struct CpuRegisters {
    uint32_t leaf1Ecx = 0;
    uint32_t leaf1Edx = 0;
    uint32_t leaf7Ebx = 0;
    uint32_t leaf7Ecx = 0;
    uint32_t extendedEdx = 0;   ///< leaf 0x80000001
    uint64_t enabledState = 0;  ///< XCR0: register state that the operating system saves; 0 without xgetbv
};

/// Instruction sets that both the processor and the operating system support.
struct SimdSupport {
    bool sse2 = false;
    bool avx2 = false;
    bool avx512bw = false;    ///< with the foundation and the 128- and 256-bit forms (VL)
    bool avx512vbmi = false;  ///< with all of these
};

CpuRegisters ReadCpuRegisters();

/// Pure functions of the registers.
uint32_t FeatureFlagsOf(const CpuRegisters& registers);
SimdSupport SimdSupportOf(const CpuRegisters& registers);

SimdSupport DetectSimdSupport();

}  // namespace clarivex
