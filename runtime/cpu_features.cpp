#include "runtime/cpu_features.h"

#include "platform/tsc.h"

namespace clarivex {
namespace {

constexpr bool Bit(uint64_t word, int position) { return ((word >> position) & 1) != 0; }

/// Register state in XCR0: 128- and 256-bit registers, and with the second one masks and 512-bit registers too.
constexpr uint64_t wideState = 0x06;
constexpr uint64_t widestState = 0xE6;

bool SavesState(const CpuRegisters& registers, uint64_t state) { return (registers.enabledState & state) == state; }

}  // namespace

CpuRegisters ReadCpuRegisters() {
    CpuRegisters registers;
    const uint32_t highestLeaf = Cpuid(0, 0).eax;
    if (highestLeaf >= 1) {
        const CpuidResult leaf = Cpuid(1, 0);
        registers.leaf1Ecx = leaf.ecx;
        registers.leaf1Edx = leaf.edx;
    }
    if (highestLeaf >= 7) {
        const CpuidResult leaf = Cpuid(7, 0);
        registers.leaf7Ebx = leaf.ebx;
        registers.leaf7Ecx = leaf.ecx;
    }
    if (Cpuid(0x80000000, 0).eax >= 0x80000001) registers.extendedEdx = Cpuid(0x80000001, 0).edx;
    constexpr int stateReadable = 27;
    if (Bit(registers.leaf1Ecx, stateReadable)) registers.enabledState = ReadXcr0();
    return registers;
}

uint32_t FeatureFlagsOf(const CpuRegisters& registers) {
    const bool sse = Bit(registers.leaf1Edx, 25);
    const bool extended3dNow = Bit(registers.extendedEdx, 30);
    uint32_t flags = 0;
    flags |= Bit(registers.leaf1Edx, 15) ? featureConditionalMove : 0;
    flags |= Bit(registers.leaf1Edx, 23) ? featureMmx : 0;
    flags |= sse || extended3dNow ? featureSse : 0;
    flags |= Bit(registers.extendedEdx, 31) ? feature3dNow : 0;
    flags |= extended3dNow ? featureExtended3dNow : 0;
    flags |= sse ? featurePlainSse : 0;
    flags |= Bit(registers.leaf1Edx, 26) ? featureSse2 : 0;
    return flags;
}

SimdSupport SimdSupportOf(const CpuRegisters& registers) {
    SimdSupport support;
    support.sse2 = Bit(registers.leaf1Edx, 26);
    const bool avx = Bit(registers.leaf1Ecx, 28) && SavesState(registers, wideState);
    support.avx2 = support.sse2 && avx && Bit(registers.leaf7Ebx, 5);
    const bool foundation = Bit(registers.leaf7Ebx, 16);
    const bool bytesAndWords = Bit(registers.leaf7Ebx, 30);
    const bool shortForms = Bit(registers.leaf7Ebx, 31);
    support.avx512bw = support.avx2 && foundation && bytesAndWords && shortForms && SavesState(registers, widestState);
    support.avx512vbmi = support.avx512bw && Bit(registers.leaf7Ecx, 1);
    return support;
}

SimdSupport DetectSimdSupport() { return SimdSupportOf(ReadCpuRegisters()); }

}  // namespace clarivex
