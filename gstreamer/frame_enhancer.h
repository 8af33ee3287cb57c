// The frames of one stream, from GStreamer's memory through the library and back.
#pragma once

#include <clarivex/clarivex.h>
#include <gst/video/video.h>

#include <memory>

#include "gstreamer/plain_part.h"
#include "gstreamer/video_range.h"

namespace clarivex {

bool HaveSameSize(const GstVideoInfo& a, const GstVideoInfo& b);

/// One stream of pictures of one size and format. One thread at a time.
class FrameEnhancer {
public:
    /// The next frame stands at another place of the film than behind the one before.
    void BeginAnew() { isNew = true; }

    /// Enhances a frame; the sizes of both say whether it is enlarged.
    ///
    /// wanted     of its settings mode and pixel aspect are the frames' own
    /// plainPart  0 … 1: the part of the width, from the left, that shows the source as it is
    /// in, out    mapped; I420, YV12, NV12 or YUY2, of video or full range. `out`, of video range, is as large as the library
    ///            makes it
    /// result     of the library's calls; `out` is undefined behind an error
    cvx_result Enhance(const cvx_settings& wanted, double plainPart, GstVideoFrame& in, GstVideoFrame& out);

private:
    struct ContextDestroy {
        void operator()(cvx_context* owned) const { cvx_destroy(owned); }
    };

    cvx_result Prepare(const cvx_settings& settings, const GstVideoInfo& in);

    std::unique_ptr<cvx_context, ContextDestroy> context;
    cvx_settings used{};  // by the context
    bool isNew = false;
    VideoRangeCopy videoRange;
    PlainPart plain;
};

}  // namespace clarivex
