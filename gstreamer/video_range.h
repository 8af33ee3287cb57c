// Frames of full range brought to video range, which is what the library takes.
#pragma once

#include <gst/video/video.h>

#include <cstdint>
#include <memory>

namespace clarivex {

/// Whether samples with these colours are of full range: black is 0, not 16.
bool IsFullRange(const GstVideoColorimetry& colours);

/// The same colours, those of full range in video range.
GstVideoColorimetry InVideoRange(GstVideoColorimetry colours);

/// The same colours in full range.
GstVideoColorimetry InFullRange(GstVideoColorimetry colours);

/// Memory for one frame in video range. One thread.
class VideoRangeCopy {
public:
    /// Brings each sample to the nearest level: luma 0 … 255 to 16 … 235, chroma 0 … 255 to 16 … 240 with 128 where it was.
    ///
    /// frame   mapped; I420, YV12, NV12 or YUY2. It is not changed
    /// copy    receives a frame of the same size and format whose planes stand here until the next call; it is not to be
    ///         unmapped. May be the same
    /// result  false, with `copy` unchanged, where there is no memory for it; some is taken when size or format have changed
    bool Make(const GstVideoFrame& frame, GstVideoFrame& copy);

private:
    std::unique_ptr<uint8_t[]> samples;
    gsize bytes = 0;
};

}  // namespace clarivex
