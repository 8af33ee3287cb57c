// Kernels that need AVX-512's byte permutations, which not all processors with AVX-512 have.
#pragma once

#include "simd/kernel_table.h"

namespace clarivex {

void TabulateLumaVbmi(const LumaCurve& curve, uint8_t* table);
void ToneLumaVbmi(const uint8_t* in, uint8_t* out, int32_t width, const LumaTone& tone, const GrainRow& grain);

}  // namespace clarivex
