// The processor's own instructions for time stamps and features.
#pragma once

#include <cpuid.h>
#include <x86intrin.h>

#include <cstdint>

namespace clarivex {

/// Counts at a steady rate near the processor's clock; a machine may hold it still.
inline uint64_t ReadTimeStamp() { return __rdtsc(); }

struct CpuidResult {
    uint32_t eax = 0;
    uint32_t ebx = 0;
    uint32_t ecx = 0;
    uint32_t edx = 0;
};

/// leaf  must be one that the processor has: leaf 0 (or 0x80000000) gives the highest in eax.
inline CpuidResult Cpuid(uint32_t leaf, uint32_t subleaf) {
    CpuidResult result;
    __cpuid_count(leaf, subleaf, result.eax, result.ebx, result.ecx, result.edx);
    return result;
}

/// Register state that the operating system saves. Only where bit 27 of ecx of leaf 1 is set.
inline uint64_t ReadXcr0() {
    uint32_t low = 0;
    uint32_t high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (uint64_t{high} << 32) | low;
}

}  // namespace clarivex
