// Frame requests as the negotiation makes them, for tests that lay frames out.
#pragma once

#include <cstdint>

#include "pipeline/frame_geometry.h"
#include "pipeline/frame_request.h"

namespace clarivex {

inline ImageFormat FormatOf(PixelFormat format, int32_t width, int32_t height) {
    const int32_t bits = format == PixelFormat::yuy2 ? 16 : 12;
    return {.readable = true, .width = width, .height = height, .bitCount = bits, .target = {}};
}

/// A stream that is scaled when its output is wider.
inline FrameRequest StreamOf(PixelFormat format, int32_t width, int32_t height, int32_t outputWidth,
                             int32_t outputHeight) {
    FrameRequest request;
    request.format = format;
    request.input = request.source = FormatOf(format, width, height);
    request.output = FormatOf(format, outputWidth, outputHeight);
    request.sourceWidth = width;
    request.sourceHeight = height;
    request.scalingOn = outputWidth > width;
    return request;
}

}  // namespace clarivex
