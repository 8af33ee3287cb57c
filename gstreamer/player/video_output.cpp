#include "gstreamer/player/video_output.h"

#include <gst/video/videooverlay.h>

#include "gstreamer/player/play_error.h"

namespace clarivex {

namespace {

struct SinkKind {
    const char* name;
    bool scales;  // otherwise it asks for pictures of the window's size
};
constexpr SinkKind kinds[] = {{"xvimagesink", true}, {"glimagesink", true}, {"ximagesink", false}};

/// The sink, connected to the display; null when it is not installed or does not work with this display.
Reference<GstElement> Connect(const char* name) {
    GstElement* made = gst_element_factory_make(name, nullptr);
    if (made == nullptr) return nullptr;
    Reference<GstElement> sink(static_cast<GstElement*>(gst_object_ref_sink(made)));
    if (gst_element_set_state(sink.get(), GST_STATE_READY) == GST_STATE_CHANGE_SUCCESS) return sink;
    gst_element_set_state(sink.get(), GST_STATE_NULL);
    return nullptr;
}

}  // namespace

VideoOutput::VideoOutput(unsigned long window) {
    for (const SinkKind& kind : kinds) {
        if (sink) break;
        sink = Connect(kind.name);
        scales = kind.scales;
    }
    if (!sink)
        throw PlayError(
            "GStreamer shows no video here: none of xvimagesink, glimagesink and ximagesink works; install "
            "gstreamer1.0-x");
    g_object_set(sink.get(), "force-aspect-ratio", TRUE, nullptr);
    gst_video_overlay_set_window_handle(GST_VIDEO_OVERLAY(sink.get()), window);
    gst_video_overlay_handle_events(GST_VIDEO_OVERLAY(sink.get()), FALSE);
}

VideoOutput::~VideoOutput() { gst_element_set_state(sink.get(), GST_STATE_NULL); }

bool VideoOutput::Redraw(const Extent& window) {
    gst_video_overlay_expose(GST_VIDEO_OVERLAY(sink.get()));
    if (window == drawn) return false;
    drawn = window;
    return !scales;
}

}  // namespace clarivex
