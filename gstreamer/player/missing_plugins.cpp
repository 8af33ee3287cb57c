#include "gstreamer/player/missing_plugins.h"

#include <gst/pbutils/pbutils.h>

#include <algorithm>
#include <string_view>

namespace clarivex {

namespace {

struct PackageRow {
    std::string_view kind;  // the media type, or the scheme of a URI
    const char* package;
};
constexpr const char* base = "gstreamer1.0-plugins-base";
constexpr const char* good = "gstreamer1.0-plugins-good";
constexpr const char* bad = "gstreamer1.0-plugins-bad";
constexpr const char* ugly = "gstreamer1.0-plugins-ugly";
constexpr const char* libav = "gstreamer1.0-libav";

// What is read by others than libav's decoders.
constexpr PackageRow rows[] = {
    {"application/ogg", base},
    {"audio/x-opus", base},
    {"audio/x-vorbis", base},
    {"video/x-theora", base},
    {"audio/x-matroska", good},
    {"audio/x-wav", good},
    {"video/quicktime", good},
    {"video/webm", good},
    {"video/x-flv", good},
    {"video/x-matroska", good},
    {"video/x-msvideo", good},
    {"video/x-vp8", good},
    {"video/x-vp9", good},
    {"http", good},
    {"https", good},
    {"rtsp", good},
    {"application/mxf", bad},
    {"application/x-yuv4mpeg", bad},
    {"video/mpeg", bad},
    {"video/mpegts", bad},
    {"video/x-ms-asf", ugly},
    {"application/x-hls", bad},
    {"application/dash+xml", bad},
    {"application/x-rtp", good},
};

/// The media type or scheme that a message of a missing plug-in is about, with what kind of plug-in is missing.
std::string KindOf(const GstStructure* told, std::string& type) {
    type = gst_structure_get_string(told, "type");
    const GValue* detail = gst_structure_get_value(told, "detail");
    if (detail != nullptr && G_VALUE_HOLDS_STRING(detail)) return g_value_get_string(detail);
    if (detail == nullptr || !GST_VALUE_HOLDS_CAPS(detail)) return "";
    const GstCaps* caps = gst_value_get_caps(detail);
    return gst_caps_get_size(caps) > 0 ? gst_structure_get_name(gst_caps_get_structure(caps, 0)) : "";
}

const char* PackageOf(const GstStructure* told) {
    std::string type;
    const std::string kind = KindOf(told, type);
    const auto* row = std::ranges::find(rows, kind, &PackageRow::kind);
    if (row != std::end(rows)) return row->package;
    return type == "decoder" ? libav : bad;
}

void AddOnce(std::vector<std::string>& all, const std::string& one) {
    if (std::ranges::count(all, one) == 0) all.push_back(one);
}

std::string Joined(const std::vector<std::string>& all) {
    std::string text;
    for (const std::string& one : all) text += (text.empty() ? "" : &one == &all.back() ? " and " : ", ") + one;
    return text;
}

}  // namespace

void MissingPlugins::Take(GstMessage* message) {
    if (gst_is_missing_plugin_message(message) == 0) return;
    AddOnce(wants, Taken(gst_missing_plugin_message_get_description(message)));
    AddOnce(packages, PackageOf(gst_message_get_structure(message)));
}

std::string MissingPlugins::Text() const {
    return "GStreamer lacks what it needs: " + Joined(wants) + "; install " + Joined(packages);
}

}  // namespace clarivex
