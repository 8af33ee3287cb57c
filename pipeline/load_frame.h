// Splits a packed YUY2 frame into the planes that the engine works on.
#pragma once

#include "runtime/planes.h"

namespace clarivex {

struct KernelTable;

/// Luma of every row; chroma of the first row of each pair of rows, the other row's is dropped. Byte 1 of each 4-byte
/// group goes to the third plane, byte 3 to the second.
///
/// packed  width in samples, stride in bytes; an odd width is read to the end of its last pair
/// target  planes of the same luma size with strides that hold the width rounded up to 8. Rows are filled up to there
///         with the last pair: luma Y0, Y1, Y0, Y1, chroma with its last sample.
void LoadFrame(const PlaneView& packed, const ImagePlanes& target, const KernelTable& kernels);

}  // namespace clarivex
