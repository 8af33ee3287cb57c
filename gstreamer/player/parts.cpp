#include "gstreamer/player/parts.h"

#include "gstreamer/player/play_error.h"

namespace clarivex {

Reference<GstElement> MakePart(const char* name) {
    GstElement* made = gst_element_factory_make(name, nullptr);
    if (made == nullptr)
        throw PlayError(std::string("GStreamer has no element ") + name + "; install gstreamer1.0-plugins-base");
    return Reference<GstElement>(static_cast<GstElement*>(gst_object_ref_sink(made)));
}

Reference<GstElement> MakeRow(std::initializer_list<const char*> names) {
    Reference<GstElement> bin(static_cast<GstElement*>(gst_object_ref_sink(gst_bin_new(nullptr))));
    GstElement* last = nullptr;
    for (const char* name : names) {
        const Reference<GstElement> part = MakePart(name);
        gst_bin_add(GST_BIN(bin.get()), part.get());
        if (last != nullptr) gst_element_link(last, part.get());
        if (last == nullptr) {
            const Reference<GstPad> pad(gst_element_get_static_pad(part.get(), "sink"));
            gst_element_add_pad(bin.get(), gst_ghost_pad_new("sink", pad.get()));
        }
        last = part.get();
    }
    const Reference<GstPad> pad(gst_element_get_static_pad(last, "src"));
    if (pad) gst_element_add_pad(bin.get(), gst_ghost_pad_new("src", pad.get()));
    return bin;
}

Reference<GstElement> PartOf(GstElement* bin, const char* name) {
    Reference<GstElement> found;
    GstIterator* parts = gst_bin_iterate_recurse(GST_BIN(bin));
    GValue value = G_VALUE_INIT;
    while (!found && gst_iterator_next(parts, &value) == GST_ITERATOR_OK) {
        GstElement* part = GST_ELEMENT(g_value_get_object(&value));
        const GstElementFactory* factory = gst_element_get_factory(part);
        if (factory != nullptr && g_str_equal(GST_OBJECT_NAME(factory), name) != 0)
            found.reset(static_cast<GstElement*>(gst_object_ref(part)));
        g_value_reset(&value);
    }
    g_value_unset(&value);
    gst_iterator_free(parts);
    return found;
}

std::optional<GstVideoInfo> VideoInfoOf(const GstCaps* caps) {
    GstVideoInfo info;
    if (caps == nullptr || gst_video_info_from_caps(&info, caps) == 0) return std::nullopt;
    return info;
}

std::optional<GstVideoInfo> VideoInfoAt(GstPad* pad) {
    const Caps caps(pad != nullptr ? gst_pad_get_current_caps(pad) : nullptr);
    return VideoInfoOf(caps.get());
}

}  // namespace clarivex
