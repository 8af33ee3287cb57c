#include "simd/avx512_lanes.h"

// Behind the wider ones, which bring in the compiler's own header without its warnings.
#include "simd/avx2_lanes.h"
#include "simd/kernels_avx512vbmi.h"
#include "simd/make_table.inl"

namespace clarivex {

// Groups of 64 rows fill the first-level cache, and where wide registers are worked on in halves nothing makes up for it. Rows
// go in groups of 32 instead, with half the width but twice the registers that AVX2 has.
constexpr KernelTable plainTable = MakeTable<Avx512Lanes, Avx2Lanes>("avx512");
constinit const KernelTable avx512Kernels = plainTable;

namespace {

constexpr KernelTable WithTables(KernelTable table) {
    table.variant = "vbmi";
    table.tabulateLuma = TabulateLumaVbmi;
    table.toneLuma = ToneLumaVbmi;
    return table;
}

}  // namespace

constinit const KernelTable avx512VbmiKernels = WithTables(plainTable);

}  // namespace clarivex
