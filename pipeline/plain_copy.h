// What a disabled object does with a frame: it copies the picture to the upper left of the output.
#pragma once

#include "pipeline/frame_geometry.h"
#include "pipeline/frame_request.h"

namespace clarivex {

/// Copies what both pictures share, plane by plane as CopyPlane does, and stays inside both buffers. The right and
/// lower part of a larger output keeps what it held.
void PlainCopy(PixelFormat format, const FrameLayout& layout);

}  // namespace clarivex
