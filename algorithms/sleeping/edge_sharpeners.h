// Passes that sharpen or smooth a whole plane along one axis, in place, before it is scaled.
//
// The planes are parts of working images: strides are multiples of 16, and a spare row follows the last one. A pass
// whose gains are inactive leaves the plane untouched, spare columns included.
#pragma once

#include <cstdint>

#include "algorithms/sharpen_params.h"
#include "algorithms/sleeping/detail_strips.h"
#include "algorithms/sleeping/strip_fir.h"
#include "runtime/planes.h"

namespace clarivex {

/// The post filter that SharpenRowsKnee can run on each strip behind its own kernel.
struct StripFilter {
    const DetailTaps& taps;
    int32_t evenFilterPasses;
    const KernelTable& kernels;
    DetailFirScratch scratch;  ///< rows for the plane's width
};

/// Narrow kernel along the rows; edges as NarrowDetailRows.
void SharpenRowsNarrow(const Plane& plane, const SharpenParams& params);

/// Narrow kernel down the columns, spare columns included; a height of 1 is left alone. Writes the last row into the
/// spare row below the plane. Of an odd height the last row stays as it is.
void SharpenColumnsNarrow(const Plane& plane, const SharpenParams& params);

/// Gated kernel along the rows; edges as GatedDetailRows.
void SharpenRowsGated(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide, RowDither dither);

/// Gated kernel down the columns, in groups of four neighbours; edges as GatedDetailColumns.
void SharpenColumnsGated(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide);

/// Kernel with two steps above the knee along the rows; edges as KneeDetailRows.
///
/// scalarForm  instead filters columns 3 … width − 4 with a single knee and softens what was clipped.
/// filter      may be null; runs on each strip afterwards, also when both gains are inactive.
void SharpenRowsKnee(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide, bool scalarForm,
                     RowDither dither, const StripFilter* filter);

/// Single knee on each measure down the columns, in full width; the 3 rows at the top and at the bottom stay.
void SharpenColumnsPlain(const Plane& plane, const SharpenParams& narrow, const SharpenParams& wide);

}  // namespace clarivex
