#include "pipeline/load_frame.h"

#include "simd/kernel_table.h"

namespace clarivex {
namespace {

// Filters take luma 8 samples at a time: the rest of the last group continues the last pair, chroma with it.
constexpr int32_t groupPairs = 4;

void PadRow(uint8_t* row, int32_t pairs, int32_t samplesPerPair) {
    const int32_t padded = (pairs + groupPairs - 1) / groupPairs * groupPairs;
    for (int32_t x = samplesPerPair * pairs; x < samplesPerPair * padded; ++x) row[x] = row[x - samplesPerPair];
}

}  // namespace

void LoadFrame(const PlaneView& packed, const ImagePlanes& target, const KernelTable& kernels) {
    const int32_t pairs = (packed.width + 1) / 2;
    for (int32_t y = 0; y < packed.height; ++y) {
        const bool takesChroma = y % 2 == 0;
        uint8_t* luma = target.luma.Row(y);
        uint8_t* u = takesChroma ? target.third.Row(y / 2) : nullptr;
        uint8_t* v = takesChroma ? target.second.Row(y / 2) : nullptr;
        kernels.splitPackedRow(packed.Row(y), luma, u, v, pairs);
        PadRow(luma, pairs, 2);
        if (takesChroma) {
            PadRow(u, pairs, 1);
            PadRow(v, pairs, 1);
        }
    }
}

}  // namespace clarivex
