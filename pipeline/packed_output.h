// The output stage of YUY2: writes every byte of the picture once, with tone curve, chroma gain, noise, dither and overlay.
#pragma once

#include <cstdint>

#include "pipeline/output_inputs.h"

namespace clarivex {

/// Interleaves the planes to Y0 U Y1 V, chroma widened to every row by a quarter of its neighbour row, and blackens what is
/// right of the picture and the row below it.
///
/// target     width and height in samples, stride in bytes; rows × stride bytes may be written, none behind them. A target
///            wider or higher than the source keeps what it held beyond the margin and the black row.
/// targetEnd  end of the output buffer, which may come before the last row's stride ends; null where rows end with the
///            picture's last pair, whatever their stride.
/// source     luma of any size with its spare column readable; third plane U, second plane V. An empty one writes nothing.
void PackedOutputStage(const Plane& target, const uint8_t* targetEnd, const PictureView& source,
                       const OutputStageInputs& inputs);

}  // namespace clarivex
