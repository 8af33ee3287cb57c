#include "gstreamer/player/sound_output.h"

#include "gstreamer/player/parts.h"

namespace clarivex {

SoundOutput MakeSilence() {
    SoundOutput silence{MakePart("fakesink"), false};
    g_object_set(silence.sink.get(), "sync", TRUE, nullptr);
    return silence;
}

SoundOutput MakeSoundOutput() {
    GstElement* made = gst_element_factory_make("autoaudiosink", nullptr);
    if (made == nullptr) return MakeSilence();
    Reference<GstElement> sink(static_cast<GstElement*>(gst_object_ref_sink(made)));
    // Where it finds no device it puts a sink in that drops all.
    const bool works = gst_element_set_state(sink.get(), GST_STATE_READY) == GST_STATE_CHANGE_SUCCESS;
    if (works && !PartOf(sink.get(), "fakesink")) return {std::move(sink), true};
    gst_element_set_state(sink.get(), GST_STATE_NULL);
    return MakeSilence();
}

}  // namespace clarivex
