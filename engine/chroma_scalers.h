// Chroma planes enlarged by three halves or by two, by linear interpolation in integers.
#pragma once

#include <cstdint>

#include "algorithms/slack_row.h"
#include "runtime/planes.h"

namespace clarivex {

/// Three halves along the rows, all rows of the source.
///
/// target     rows of at least the source's height; 3 · ⌈width / 2⌉ columns are written, as far as the stride goes.
/// chromaOdd  false: output 3n lies at input position 2n − 1/6, centred like luma; true: at 2n − 1/3.
/// edges      the first and the last sample are repeated. Only the source's own samples are read.
void ScaleChromaRows(const Plane& target, const PlaneView& source, bool chromaOdd, SlackRow<uint8_t>& scratch,
                     const KernelTable& kernels);

/// Three halves down the columns, for the source's width rounded up to a multiple of 4 within the target's stride and
/// the source's memory. The last output row is the last input row. A source of a single row gives no output.
///
/// target     (3 · height) >> 1 rows, one more for an odd height; rows beyond the target's height are left out.
/// sourceEnd  end of the memory that may be read behind the source.
/// scratch    receives rows that the target has no place for.
void ScaleChromaColumns(const Plane& target, const PlaneView& source, const uint8_t* sourceEnd,
                        SlackRow<uint8_t>& scratch, const KernelTable& kernels);

/// Twice along the rows, all rows of the source.
///
/// target     rows of at least the source's height; 2 · width columns are written, as far as the stride goes.
/// chromaOdd  false: outputs 2n and 2n + 1 lie a quarter of a sample left and right of input n; true: three eighths left
///            and an eighth right of it, for luma that an even filter has shifted.
/// edges      the first and the last sample are repeated. Only the source's own samples are read.
void DoubleChromaRows(const Plane& target, const PlaneView& source, bool chromaOdd, SlackRow<uint8_t>& scratch,
                      const KernelTable& kernels);

/// The same down the columns.
///
/// target  2 · height rows; rows beyond the target's height are left out, and columns beyond its stride.
void DoubleChromaColumns(const Plane& target, const PlaneView& source, bool chromaOdd, const KernelTable& kernels);

}  // namespace clarivex
