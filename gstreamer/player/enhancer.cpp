#include "gstreamer/player/enhancer.h"

#include <algorithm>

#include "gstreamer/player/parts.h"

namespace clarivex {

Enhancer::Enhancer(const Look& look) : filter(MakeRow({"videoconvert", "clarivex"})), followed(look) {
    element = PartOf(filter.get(), "clarivex").get();
    SetAll(look);
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
