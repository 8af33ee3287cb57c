#include "gstreamer/video_range.h"

#include <array>
#include <new>

namespace clarivex {
namespace {

using Levels = std::array<uint8_t, 256>;

/// originInVideo + span · (level − origin) / 255, which is never in the middle between two levels.
constexpr Levels LevelsFor(int span, int origin, int originInVideo) {
    constexpr int fullSpan = 255;
    Levels levels{};
    for (int level = 0; level <= fullSpan; ++level) {
        const int scaled = originInVideo * fullSpan + span * (level - origin);  // never below 0
        levels[static_cast<size_t>(level)] = static_cast<uint8_t>((2 * scaled + fullSpan) / (2 * fullSpan));
    }
    return levels;
}

constexpr Levels lumaLevels = LevelsFor(219, 0, 16);
constexpr Levels chromaLevels = LevelsFor(224, 128, 128);

/// Bytes of a row of a plane: what all its components have of it together.
int RowBytes(const GstVideoInfo& info, guint plane) {
    int bytes = 0;
    for (guint i = 0; i < GST_VIDEO_INFO_N_COMPONENTS(&info); ++i)
        if (static_cast<guint>(GST_VIDEO_INFO_COMP_PLANE(&info, i)) == plane)
            bytes += GST_VIDEO_INFO_COMP_WIDTH(&info, i);
    return bytes;
}

void ConvertPlane(const GstVideoFrame& from, const GstVideoFrame& to, guint plane) {
    const bool packed = GST_VIDEO_INFO_N_PLANES(&from.info) == 1;
    const Levels& evens = plane == 0 ? lumaLevels : chromaLevels;
    const Levels& odds = packed ? chromaLevels : evens;
    const int rowBytes = packed ? (RowBytes(from.info, plane) + 3) & ~3 : RowBytes(from.info, plane);
    const guint component = plane == 0 ? 0 : GST_VIDEO_INFO_N_COMPONENTS(&from.info) - 1;
    for (int y = 0; y < GST_VIDEO_INFO_COMP_HEIGHT(&from.info, component); ++y) {
        const auto* in = static_cast<const uint8_t*>(from.data[plane]) + ptrdiff_t{y} * from.info.stride[plane];
        auto* out = static_cast<uint8_t*>(to.data[plane]) + ptrdiff_t{y} * to.info.stride[plane];
        for (int x = 0; x < rowBytes; ++x) out[x] = x % 2 == 0 ? evens[in[x]] : odds[in[x]];
    }
}

}  // namespace

bool IsFullRange(const GstVideoColorimetry& colours) { return colours.range == GST_VIDEO_COLOR_RANGE_0_255; }

GstVideoColorimetry InVideoRange(GstVideoColorimetry colours) {
    if (IsFullRange(colours)) colours.range = GST_VIDEO_COLOR_RANGE_16_235;
    return colours;
}

GstVideoColorimetry InFullRange(GstVideoColorimetry colours) {
    colours.range = GST_VIDEO_COLOR_RANGE_0_255;
    return colours;
}

bool VideoRangeCopy::Make(const GstVideoFrame& frame, GstVideoFrame& copy) {
    GstVideoInfo plain;  // whose rows stand without gaps of the source's
    gst_video_info_set_format(&plain, GST_VIDEO_INFO_FORMAT(&frame.info), static_cast<guint>(frame.info.width),
                              static_cast<guint>(frame.info.height));
    if (bytes != plain.size) {
        bytes = 0;
        samples.reset(new (std::nothrow) uint8_t[plain.size]);
        if (samples == nullptr) return false;
        bytes = plain.size;
    }
    const GstVideoFrame from = frame;
    copy = frame;
    for (guint plane = 0; plane < GST_VIDEO_INFO_N_PLANES(&plain); ++plane) {
        copy.data[plane] = samples.get() + plain.offset[plane];
        copy.info.stride[plane] = plain.stride[plane];
        ConvertPlane(from, copy, plane);
    }
    return true;
}

}  // namespace clarivex
