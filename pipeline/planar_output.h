// The output stage of YV12 and IYUV: luma with tone curve, noise, dither and overlay, chroma with its gain.
#pragma once

#include <cstdint>

#include "pipeline/output_inputs.h"

namespace clarivex {

/// Writes the three planes once each and fills the margins right of the picture with black.
///
/// target     planes of the same picture in the output buffer; margins are clipped to the stride of their row
/// targetEnd  end of the output buffer; null where rows end with the picture: nothing is written behind them
/// source     of what both sizes share, exactly the visible samples are read. They may lie in the input buffer. An odd
///            width of luma is written as an even one where the target has room; its rows have one sample more then.
/// The third plane takes the U parameters, the second the V parameters, also for IYUV, which has them the other way round.
void PlanarOutputStage(const ImagePlanes& target, const uint8_t* targetEnd, const PictureView& source,
                       const OutputStageInputs& inputs);

}  // namespace clarivex
