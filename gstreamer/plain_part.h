// The left part of an output that shows the source as it is, for a look at what enhancing does.
#pragma once

#include <gst/video/video.h>

#include <memory>

namespace clarivex {

/// Draws the plain part of frames, and the line that ends it. One thread.
class PlainPart {
public:
    /// Lays the source over the left of an enhanced frame: enlarged by cubic filters, or sample for sample where both have one
    /// size. Behind it stands a line of light and dark columns, neutral in colour; right of that nothing is touched.
    ///
    /// part    0 … 1 of the output's width; the line begins at an even column. At 1, there is none
    /// frames  mapped, of one format among I420, YV12, NV12 and YUY2; the output is as large as the source or 3/2 of it
    /// memory  some is taken when part, format or sizes have changed since the last frame
    void Draw(double part, GstVideoFrame& source, GstVideoFrame& output);

private:
    struct ConverterFree {
        void operator()(GstVideoConverter* converter) const { gst_video_converter_free(converter); }
    };

    void Follow(int columns, const GstVideoInfo& source, const GstVideoInfo& output);

    std::unique_ptr<GstVideoConverter, ConverterFree> converter;
    GstVideoInfo sourceInfo{};  // what the converter is made for
    GstVideoInfo outputInfo{};
    int width = 0;
};

}  // namespace clarivex
