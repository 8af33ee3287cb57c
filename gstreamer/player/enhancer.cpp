#include "gstreamer/player/enhancer.h"

#include <algorithm>

#include "gstreamer/player/parts.h"

namespace clarivex {

namespace {

/// Video range in the film's own colours, where its samples use the full one; else all there is.
Caps RangeCaps(const GstVideoInfo& info) {
    GstVideoColorimetry colours = info.colorimetry;
    if (!GST_VIDEO_INFO_IS_YUV(&info) || colours.range != GST_VIDEO_COLOR_RANGE_0_255) return Caps(gst_caps_new_any());
    colours.range = GST_VIDEO_COLOR_RANGE_16_235;
    const std::string name = Taken(gst_video_colorimetry_to_string(&colours));
    return Caps(gst_caps_new_simple("video/x-raw", "colorimetry", G_TYPE_STRING, name.c_str(), nullptr));
}

/// Called for what is about to come to the converter, on the film's thread; `range` is the filter behind it.
GstPadProbeReturn FollowRange(GstPad* /*pad*/, GstPadProbeInfo* probe, gpointer range) {
    GstEvent* event = gst_pad_probe_info_get_event(probe);
    GstCaps* caps = nullptr;
    if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) gst_event_parse_caps(event, &caps);
    if (const auto info = VideoInfoOf(caps)) g_object_set(range, "caps", RangeCaps(*info).get(), nullptr);
    return GST_PAD_PROBE_OK;
}

}  // namespace

Enhancer::Enhancer(const Look& look) : filter(MakeRow({"videoconvert", "capsfilter", "clarivex"})), followed(look) {
    element = PartOf(filter.get(), "clarivex").get();
    SetAll(look);
    const Reference<GstPad> pad(gst_element_get_static_pad(filter.get(), "sink"));
    gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, FollowRange,
                      PartOf(filter.get(), "capsfilter").get(), nullptr);
}

void Enhancer::SetAll(const Look& look) {
    g_object_set(element, "sharpness", static_cast<double>(look.sharpness), "lighting", look.lighting, "mode",
                 look.mode, "noise", look.noise, "caption", look.caption, "split", static_cast<double>(look.split),
                 "enabled", look.enhanced, nullptr);
}

std::optional<Extent> Enhancer::Picture() const {
    const Reference<GstPad> pad(gst_element_get_static_pad(filter.get(), "src"));
    const auto info = VideoInfoAt(pad.get());
    if (!info) return std::nullopt;
    const auto width = gst_util_uint64_scale_int_round(static_cast<guint64>(info->width), info->par_n, info->par_d);
    return Extent{std::max(1, static_cast<int>(width)), info->height};
}

bool Enhancer::Follow(const Look& look) {
    if (look == followed) return false;
    // These two have the caps looked at again, so that they are only set when they change.
    if (look.mode != followed.mode) g_object_set(element, "mode", look.mode, nullptr);
    if (look.enhanced != followed.enhanced) g_object_set(element, "enabled", look.enhanced, nullptr);
    g_object_set(element, "sharpness", static_cast<double>(look.sharpness), "lighting", look.lighting, "noise",
                 look.noise, "caption", look.caption, "split", static_cast<double>(look.split), nullptr);
    followed = look;
    return true;
}

}  // namespace clarivex
