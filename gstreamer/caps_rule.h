// What caps the element has on one pad for those of the other: the sizes by the library's own rule, all else as it is.
#pragma once

#include <gst/gst.h>

#include <cstdint>

namespace clarivex {

/// The caps of the other pad.
///
/// direction  GST_PAD_SINK: `caps` are a source's, the result the output's; GST_PAD_SRC: the other way round
/// caps       fixed or not; sides may be ranges and lists. What is not raw video in system memory, and sizes that the
///            library does not take, have no counterpart. Outputs are of video range, of sources of full range too
/// mode       CVX_MODE_…. With CVX_MODE_AUTO, sizes that are not fixed yet stand for both, enlarged first, and the first
///            call of a process may measure the processor
/// result     of fixed source caps: one fixed structure at most, with colorimetry and chroma site written out, as an
///            untagged picture would pass for another kind when it has grown
GstCaps* TransformCaps(GstPadDirection direction, GstCaps* caps, int32_t mode);

}  // namespace clarivex
