// The post filter on whole strips, for when it cannot follow each row at once.
#pragma once

#include "algorithms/detail_fir.h"
#include "runtime/planes.h"

namespace clarivex {

/// Working rows of DetailFir: slack rows of the strip's width.
struct DetailFirScratch {
    uint8_t* samples = nullptr;
    int16_t* words = nullptr;
};

/// Filters a strip in place in the form that the taps ask for.
///
/// evenFilterPasses  from 3 on the number of passes of a symmetric form; else one pass runs.
void DetailFir(const Plane& strip, const DetailTaps& taps, int32_t evenFilterPasses, const KernelTable& kernels,
               const DetailFirScratch& scratch);

}  // namespace clarivex
