#include "gstreamer/player/enhancer.h"

#include <gst/video/video.h>

#include <algorithm>

#include "gstreamer/player/parts.h"

namespace clarivex {

Enhancer::Enhancer(const PlaySettings& settings) : filter(MakeRow({"videoconvert", "clarivex"})), followed(settings) {
    element = PartOf(filter.get(), "clarivex").get();  // lives as long as the bin
    SetAll(settings);
}

void Enhancer::SetAll(const PlaySettings& settings) {
    g_object_set(element, "sharpness", static_cast<double>(settings.sharpness), "lighting", settings.lighting, "mode",
                 settings.mode, "noise", settings.noise, "caption", settings.caption, "split",
                 static_cast<double>(settings.split), "enabled", settings.enhanced, nullptr);
}

std::optional<Extent> Enhancer::Picture() const {
    const Caps caps = CapsAt(filter.get(), "src");
    GstVideoInfo info;
    if (!caps || gst_video_info_from_caps(&info, caps.get()) == 0) return std::nullopt;
    const auto width = gst_util_uint64_scale_int_round(static_cast<guint64>(info.width), info.par_n, info.par_d);
    return Extent{std::max(1, static_cast<int>(width)), info.height};
}

bool Enhancer::Follow(const PlaySettings& settings) {
    if (settings == followed) return false;
    // These two have the caps looked at again, so that they are only set when they change.
    if (settings.mode != followed.mode) g_object_set(element, "mode", settings.mode, nullptr);
    if (settings.enhanced != followed.enhanced) g_object_set(element, "enabled", settings.enhanced, nullptr);
    g_object_set(element, "sharpness", static_cast<double>(settings.sharpness), "lighting", settings.lighting, "noise",
                 settings.noise, "caption", settings.caption, "split", static_cast<double>(settings.split), nullptr);
    followed = settings;
    return true;
}

}  // namespace clarivex
