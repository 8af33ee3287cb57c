#include "pipeline/load_frame.h"

#include "simd/kernel_table.h"

namespace clarivex {
namespace {

// Filters take luma 8 samples at a time: the rest of the last group continues the last pair.
void PadRow(uint8_t* row, int32_t width) {
    constexpr int32_t group = 8;
    const int32_t padded = (width + group - 1) & ~(group - 1);
    for (int32_t x = width; x < padded; ++x) {
        row[x] = row[x - 2];
    }
}

}  // namespace

void LoadFrame(const Plane& packed, const ImagePlanes& target, const KernelTable& kernels) {
    const int32_t pairs = (packed.width + 1) / 2;
    for (int32_t y = 0; y < packed.height; ++y) {
        const bool takesChroma = y % 2 == 0;
        uint8_t* luma = target.luma.Row(y);
        uint8_t* u = takesChroma ? target.third.Row(y / 2) : nullptr;
        uint8_t* v = takesChroma ? target.second.Row(y / 2) : nullptr;
        kernels.splitPackedRow(packed.Row(y), luma, u, v, pairs);
        PadRow(luma, 2 * pairs);
    }
}

}  // namespace clarivex
