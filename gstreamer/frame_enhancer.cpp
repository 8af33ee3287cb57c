#include "gstreamer/frame_enhancer.h"

#include <array>
#include <bit>

namespace clarivex {
namespace {

int32_t LibraryFormat(const GstVideoInfo& info) {
    switch (GST_VIDEO_INFO_FORMAT(&info)) {
        case GST_VIDEO_FORMAT_NV12: return CVX_FORMAT_NV12;
        case GST_VIDEO_FORMAT_YUY2: return CVX_FORMAT_YUY2;
        default: return CVX_FORMAT_YV12;  // I420 too: its chroma is told apart by the pointers
    }
}

/// cvx_source or cvx_target of a frame.
template <class Picture>
Picture PlanesOf(GstVideoFrame* frame) {
    const GstVideoInfo& info = frame->info;
    const bool planar = LibraryFormat(info) == CVX_FORMAT_YV12;
    const guint order[] = {0, planar ? GST_VIDEO_INFO_COMP_PLANE(&info, GST_VIDEO_COMP_V) : 1U,
                           static_cast<guint>(GST_VIDEO_INFO_COMP_PLANE(&info, GST_VIDEO_COMP_U))};
    Picture picture{};
    for (guint i = 0; i < GST_VIDEO_INFO_N_PLANES(&info); ++i) {
        picture.plane[i] = static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(frame, order[i]));
        picture.stride[i] = GST_VIDEO_FRAME_PLANE_STRIDE(frame, order[i]);
    }
    return picture;
}

/// The settings of frames between these caps. The sizes decide what the mode comes to: the property may be ahead of them.
cvx_settings SettingsFor(cvx_settings settings, const GstVideoInfo& in, const GstVideoInfo& out) {
    settings.mode = HaveSameSize(in, out) ? CVX_MODE_NEVER : CVX_MODE_ALWAYS;
    constexpr double largestAspect = 64;
    const double aspect = static_cast<double>(in.par_n) / in.par_d;
    settings.pixel_aspect = static_cast<float>(CLAMP(aspect, 1 / largestAspect, largestAspect));
    return settings;
}

bool AreEqual(const cvx_settings& a, const cvx_settings& b) {
    using Bytes = std::array<uint8_t, sizeof a>;
    return std::bit_cast<Bytes>(a) == std::bit_cast<Bytes>(b);
}

int64_t TimeOf(const GstBuffer* buffer) {
    return GST_BUFFER_PTS_IS_VALID(buffer) ? static_cast<int64_t>(GST_BUFFER_PTS(buffer)) : CVX_NO_TIME;
}

}  // namespace

bool HaveSameSize(const GstVideoInfo& a, const GstVideoInfo& b) { return a.width == b.width && a.height == b.height; }

/// Makes the context, or lets it follow what has changed since the last frame.
cvx_result FrameEnhancer::Prepare(const cvx_settings& settings, const GstVideoInfo& in) {
    cvx_result result = CVX_OK;
    if (context == nullptr) {
        cvx_context* made = nullptr;
        result = cvx_create(in.width, in.height, LibraryFormat(in), &settings, &made);
        context.reset(made);
    } else {
        if (!AreEqual(settings, used)) result = cvx_set_settings(context.get(), &settings);
        if (result == CVX_OK && isNew) result = cvx_reset(context.get());
    }
    if (result != CVX_OK) return result;
    used = settings;
    isNew = false;
    return CVX_OK;
}

cvx_result FrameEnhancer::Enhance(const cvx_settings& wanted, double plainPart, GstVideoFrame& in, GstVideoFrame& out) {
    GstVideoFrame read = in;
    if (IsFullRange(in.info.colorimetry) && !videoRange.Make(in, read)) return CVX_ERROR_MEMORY;
    cvx_result result = Prepare(SettingsFor(wanted, in.info, out.info), in.info);
    if (result != CVX_OK) return result;
    const auto source = PlanesOf<cvx_source>(&read);
    const auto target = PlanesOf<cvx_target>(&out);
    result = cvx_process(context.get(), &source, &target, TimeOf(in.buffer));
    if (result == CVX_OK && plainPart > 0) plain.Draw(plainPart, read, out);
    return result;
}

}  // namespace clarivex
