#include "simd/kernels_avx512vbmi.h"

#include "simd/avx512vbmi_lanes.h"
#include "simd/tabled_tone.inl"

namespace clarivex {

void TabulateLumaVbmi(const LumaCurve& curve, uint8_t* table) { TabulateLuma<Avx512VbmiLanes>(curve, table); }

void ToneLumaVbmi(const uint8_t* in, uint8_t* out, int32_t width, const LumaTone& tone, const GrainRow& grain) {
    ToneLumaByTable<Avx512VbmiLanes>(in, out, width, tone, grain);
}

}  // namespace clarivex
