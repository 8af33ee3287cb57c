// Chroma planes enlarged by three halves, by linear interpolation in integers.
#pragma once

#include <cstdint>

#include "algorithms/slack_row.h"
#include "runtime/planes.h"

namespace clarivex {

/// Row y with its ends repeated as far as interpolation looks: twice before it and four times behind it.
///
/// copy  room for that around the source's width; what is returned
const uint8_t* PadChromaRow(const PlaneView& source, int32_t y, uint8_t* copy);

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

/// Both, rows leading, with a few rows in between.
///
/// columns  width between the passes; up to a multiple of 4 they are written within the target's stride
void ScaleChromaBothAxes(const Plane& target, const PlaneView& source, int32_t columns, bool chromaOdd,
                         SlackRow<uint8_t>& scratch, const KernelTable& kernels);

}  // namespace clarivex
