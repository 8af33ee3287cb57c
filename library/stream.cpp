#include "library/stream.h"

#include <cstring>
#include <utility>

#include "overlay/font_engine.h"
#include "pipeline/frame_geometry.h"

namespace clarivex {
namespace {

// Rows are read in groups of this many samples.
constexpr int32_t groupSamples = 8;

PixelFormat PixelFormatOf(int32_t format) {
    switch (format) {
        case CVX_FORMAT_YUY2: return PixelFormat::yuy2;
        case CVX_FORMAT_I420: return PixelFormat::iyuv;
        default: return PixelFormat::yv12;
    }
}

/// One plane of a caller's picture. Of packed rows the width counts samples.
template <class PlaneKind, class Picture>
PlaneKind PlaneOf(const Picture& picture, int32_t plane, int32_t width, int32_t height) {
    return {picture.plane[plane], width, height, static_cast<int32_t>(picture.stride[plane])};
}

template <class View, class Picture>
View PlanarView(const Picture& picture, const FrameSize& size) {
    using PlaneKind = decltype(View::luma);
    const int32_t chromaWidth = (size.width + 1) / 2;
    const int32_t chromaHeight = (size.height + 1) / 2;
    View view;
    view.luma = PlaneOf<PlaneKind>(picture, 0, size.width, size.height);
    view.second = PlaneOf<PlaneKind>(picture, 1, chromaWidth, chromaHeight);
    view.third = PlaneOf<PlaneKind>(picture, 2, chromaWidth, chromaHeight);
    return view;
}

/// Two planes of chroma without gaps, V first.
template <class View>
void PlaceChroma(uint8_t* samples, const FrameSize& size, View& view) {
    const int32_t width = (size.width + 1) / 2;
    const int32_t height = (size.height + 1) / 2;
    view.second = {samples, width, height, width};
    view.third = {samples + static_cast<ptrdiff_t>(width) * height, width, height, width};
}

size_t ChromaBytes(const FrameSize& size) {
    return 2 * static_cast<size_t>((size.width + 1) / 2) * static_cast<size_t>((size.height + 1) / 2);
}

const uint8_t* EndOf(const PlaneView& plane) {
    return plane.Row(plane.stride < 0 ? 0 : plane.height - 1) + plane.width;
}

}  // namespace

Stream::Path::Path(const SettledSettings& settings) : pipeline(process, MakeSystemFontEngine(), *settings.kernels) {
    process.ShowCaption(settings.asked.caption != 0);
}

Stream::Stream(const PictureKind& kind, const SettledSettings& settings)
    : kind(kind), settings(settings), path(std::make_unique<Path>(settings)) {}

void Stream::Use(const SettledSettings& wanted) {
    if (wanted.asked.sharpness != settings.asked.sharpness) path->settingsDirty = true;
    settings = wanted;
    path->pipeline.UseKernels(*wanted.kernels);
    path->process.ShowCaption(wanted.asked.caption != 0);
}

void Stream::Restart() { path = std::make_unique<Path>(settings); }

void Stream::Process(const cvx_source& source, const cvx_target& target) {
    const bool enhanced = kind.size.width >= smallestWidth;
    if (!enhanced) {
        for (int32_t plane = 0; plane < PlaneCount(kind.format); ++plane) CopyRows(kind, plane, source, target, 0);
        return;
    }
    const FrameLayout layout = LayOut(source, target);
    const FrameRequest request = NextRequest();
    path->newStream = path->settingsDirty = false;
    path->pipeline.RunPlanes(request, layout);
    if (HasPairs()) JoinPairs(layout.output, target);
    if (!settings.enlarged && kind.size.height % 2 != 0) CopyOddRow(source, target);
}

FrameRequest Stream::NextRequest() const {
    FrameRequest request;
    request.format = PixelFormatOf(kind.format);
    request.scalingOn = settings.enlarged;
    request.pixelAspect = settings.asked.pixel_aspect;
    request.aspectCounts = true;
    request.newStream = path->newStream;
    request.settingsDirty = path->settingsDirty;
    request.enableLighting = settings.asked.lighting != 0;
    request.noiseOn = settings.asked.noise != 0;
    request.liftSizeLimits = settings.asked.limits == CVX_LIMITS_LIFTED;
    request.sharpness = settings.asked.sharpness;
    return request;
}

FrameLayout Stream::LayOut(const cvx_source& source, const cvx_target& target) {
    const FrameSize whole = OutputSize(kind.size.width, kind.size.height, settings.enlarged);
    FrameLayout layout;
    layout.width = kind.size.width;
    layout.height = kind.size.height;
    layout.outputWidth = whole.width;
    layout.outputHeight = whole.height;
    ReadPlanes(source, layout);
    PlaceOutput(target, layout);
    return layout;
}

void Stream::ReadPlanes(const cvx_source& source, FrameLayout& layout) {
    PictureView& planes = layout.input;
    if (kind.format == CVX_FORMAT_YUY2) {
        planes.luma = PlaneOf<PlaneView>(source, 0, kind.size.width, kind.size.height);
        return;
    }
    planes = PlanarView<PictureView>(source, kind.size);
    if (HasPairs()) SplitPairs(source, planes);
    layout.inputEnd = EndOf(planes.luma);
    if (kind.size.width % groupSamples == 0) return;
    planes.luma = WithPluginsNeighbours(planes.luma, planes.second);
    layout.inputEnd = EndOf(planes.luma) + groupSamples;
}

/// The last group of a row looks at what stands behind the row: in the plug-in's buffers the next one, and the second plane
/// behind the last. A copy has the same there, whatever the caller's strides.
PlaneView Stream::WithPluginsNeighbours(const PlaneView& luma, const PlaneView& second) {
    const auto rowBytes = static_cast<size_t>(luma.width);
    const size_t bytes = rowBytes * static_cast<size_t>(luma.height);
    if (lumaCopy == nullptr) lumaCopy = MakeAlignedArray<uint8_t>(bytes + groupSamples);
    const PlaneView copy{lumaCopy.get(), luma.width, luma.height, luma.width};
    for (int32_t y = 0; y < luma.height; ++y) std::memcpy(lumaCopy.get() + y * rowBytes, luma.Row(y), rowBytes);
    std::memcpy(lumaCopy.get() + bytes, second.Row(0), groupSamples);
    return copy;
}

void Stream::SplitPairs(const cvx_source& source, PictureView& planes) {
    if (sourceChroma == nullptr) sourceChroma = MakeAlignedArray<uint8_t>(ChromaBytes(kind.size));
    ImagePlanes split;
    PlaceChroma(sourceChroma.get(), kind.size, split);
    for (int32_t y = 0; y < split.second.height; ++y)
        settings.kernels->deinterleave(source.plane[1] + y * source.stride[1], split.third.Row(y), split.second.Row(y),
                                       split.second.width);
    planes.second = split.second;
    planes.third = split.third;
}

/// An odd last row of a picture that keeps its size is none of the frame path's.
void Stream::PlaceOutput(const cvx_target& target, FrameLayout& layout) {
    const FrameSize written{Target().size.width, layout.outputHeight};
    if (kind.format == CVX_FORMAT_YUY2) {
        layout.output.luma = PlaneOf<Plane>(target, 0, written.width, written.height);
        return;
    }
    layout.output = PlanarView<ImagePlanes>(target, written);
    if (!HasPairs()) return;
    const size_t bytes = ChromaBytes(written);
    if (bytes != targetChromaBytes) {
        targetChromaBytes = 0;
        targetChroma = MakeAlignedArray<uint8_t>(bytes);
        targetChromaBytes = bytes;
    }
    PlaceChroma(targetChroma.get(), written, layout.output);
}

void Stream::JoinPairs(const ImagePlanes& planes, const cvx_target& target) const {
    for (int32_t y = 0; y < planes.second.height; ++y)
        settings.kernels->interleave(planes.third.Row(y), planes.second.Row(y), target.plane[1] + y * target.stride[1],
                                     planes.second.width);
}

void Stream::CopyOddRow(const cvx_source& source, const cvx_target& target) const {
    for (int32_t plane = 0; plane < PlaneCount(kind.format); ++plane)
        CopyRows(kind, plane, source, target, ShapeOf(kind, plane).rows - 1);
}

}  // namespace clarivex
