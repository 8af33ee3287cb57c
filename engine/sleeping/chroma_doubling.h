// Chroma planes enlarged by two, by linear interpolation in integers.
#pragma once

#include "engine/chroma_scalers.h"

namespace clarivex {

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
