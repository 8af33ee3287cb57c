// The end of the pictures' way: the first of GStreamer's windows that works here, drawing into ours.
#pragma once

#include "gstreamer/player/extent.h"
#include "gstreamer/player/handles.h"

namespace clarivex {

class VideoOutput {
public:
    /// Throws PlayError when none of them works.
    explicit VideoOutput(unsigned long window);
    ~VideoOutput();
    VideoOutput(const VideoOutput&) = delete;
    VideoOutput& operator=(const VideoOutput&) = delete;

    /// For a playbin, as its video sink.
    GstElement* Sink() const { return sink.get(); }

    /// Draws the last picture again, into a window of that size. Returns whether it takes a new picture to fill it.
    bool Redraw(const Extent& window);

private:
    Reference<GstElement> sink;
    bool scales = false;  // pictures that come in another size than the window's
    Extent drawn;         // the window at last
};

}  // namespace clarivex
