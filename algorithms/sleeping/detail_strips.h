// The detail kernels on strips: up to 16 rows filtered along the row, or up to 16 columns filtered downwards. All work
// in place and read unfiltered neighbours only.
//
// A strip is a part of a working image, at least 1 sample wide and high: its stride leaves room for the width rounded up
// to a multiple of 8. Strips begin at rows and columns that are multiples of 16, so that rounding patterns continue from
// strip to strip.
#pragma once

#include <cstdint>

#include "algorithms/detail_arithmetic.h"
#include "algorithms/sharpen_params.h"
#include "runtime/planes.h"

namespace clarivex {

/// How the rounding constants 12 and 4 (of 16) alternate along a strip of rows.
enum class RowDither {
    byRow = 2,        ///< 12 on even rows, 4 on odd ones
    checkerboard = 3  ///< 12 where row and column are both even or both odd, else 4
};

/// Narrow kernel on whole groups of 8, spare columns up to the next multiple of 8 included.
///
/// edges   the sample left of a row counts as 0. Right of the last group stands what memory holds there: a spare column
///         or, without one, the row below, for the last row the spare row that has to follow it.
void NarrowDetailRows(const Plane& strip, const SharpenCoefficients& coefficients);

/// Gated kernel. The last group of 8 of a row, 1 to 8 samples, stays as it is; a width of at most 8 is left alone.
///
/// edges   left of the row its sample 1 is repeated. The last sample is written into the spare columns up to the next
///         multiple of 8.
void GatedDetailRows(const Plane& strip, const SharpenCoefficients& coefficients, RowDither dither);

/// Kernel with two steps above the knee; groups and edges as GatedDetailRows.
void KneeDetailRows(const Plane& strip, const SharpenCoefficients& coefficients, RowDither dither);

/// Narrow kernel down the strip's own columns. Of an odd height the last row stays as it is, so that a single row is left
/// alone.
///
/// edges   above the strip row 0 is repeated. The last row is written into the spare row below the strip.
void NarrowDetailColumns(const Plane& strip, const SharpenCoefficients& coefficients);

/// Gated kernel down the columns in groups of four neighbours; the last group takes in spare columns. The lowest 4 rows
/// (3 of an odd height) stay as they are, and so does a strip of fewer than 5.
void GatedDetailColumns(const Plane& strip, const SharpenCoefficients& coefficients);

/// Single knee on each measure, in full width. The 3 rows at the top and at the bottom stay as they are.
void KneeDetailColumns(const Plane& strip, const SharpenCoefficients& coefficients);

}  // namespace clarivex
