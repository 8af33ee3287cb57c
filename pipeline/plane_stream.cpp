#include "pipeline/plane_stream.h"

#include <cstring>
#include <utility>

#include "overlay/font_engine.h"
#include "pipeline/frame_geometry.h"
#include "simd/kernel_table.h"

namespace clarivex {
namespace {

// Rows are read in groups of this many samples.
constexpr int32_t groupSamples = 8;

bool HasPairs(const PictureForm& form) { return form.format == PixelFormat::nv12; }

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

void JoinPairs(const ImagePlanes& planes, const TargetPlanes& target, const KernelTable& kernels) {
    for (int32_t y = 0; y < planes.second.height; ++y)
        kernels.interleave(planes.third.Row(y), planes.second.Row(y), target.plane[1] + y * target.stride[1],
                           planes.second.width);
}

void CopyOddRow(const PictureForm& form, const SourcePlanes& source, const TargetPlanes& target) {
    for (int32_t plane = 0; plane < PlaneCount(form.format); ++plane)
        CopyRows(form, plane, source, target, ShapeOf(form, plane).rows - 1);
}

}  // namespace

PlaneStream::PlaneStream(const KernelTable& kernels) : pipeline(process, MakeSystemFontEngine(), kernels) {}

uint8_t* PlaneStream::Scratch::Take(size_t wanted) {
    if (wanted != bytes) {
        bytes = 0;
        block = MakeAlignedArray<uint8_t>(wanted);
        bytes = wanted;
    }
    return block.get();
}

void PlaneStream::Process(const PlaneRequest& request, const SourcePlanes& source, const TargetPlanes& target) {
    const PictureForm& form = request.source;
    if (form.size.width < smallestWidth) return CopyPicture(form, source, target);
    const FrameLayout layout = LayOut(request, source, target);
    process.ShowCaption(request.caption);
    pipeline.UseKernels(*request.kernels);
    pipeline.RunPlanes(TakeRequest(request), layout);
    if (HasPairs(form)) JoinPairs(layout.output, target, *request.kernels);
    if (!request.enlarged && form.size.height % 2 != 0) CopyOddRow(form, source, target);
}

FrameRequest PlaneStream::TakeRequest(const PlaneRequest& asked) {
    FrameRequest request;
    request.format = asked.source.format;
    request.scalingOn = asked.enlarged;
    request.pixelAspect = asked.pixelAspect;
    request.aspectCounts = true;
    request.newStream = std::exchange(newStream, false);
    request.settingsDirty = std::exchange(lastSharpness, asked.sharpness) != asked.sharpness;
    request.enableLighting = asked.lighting;
    request.noiseOn = asked.noise;
    request.liftSizeLimits = asked.liftSizeLimits;
    request.sharpness = asked.sharpness;
    return request;
}

FrameLayout PlaneStream::LayOut(const PlaneRequest& request, const SourcePlanes& source, const TargetPlanes& target) {
    const FrameSize& size = request.source.size;
    const FrameSize whole = OutputSize(size.width, size.height, request.enlarged);
    FrameLayout layout;
    layout.width = size.width;
    layout.height = size.height;
    layout.outputWidth = whole.width;
    layout.outputHeight = whole.height;
    ReadPlanes(request, source, layout);
    PlaceOutput(request, target, layout);
    return layout;
}

void PlaneStream::ReadPlanes(const PlaneRequest& request, const SourcePlanes& source, FrameLayout& layout) {
    const PictureForm& form = request.source;
    PictureView& planes = layout.input;
    if (form.format == PixelFormat::yuy2) {
        planes.luma = PlaneOf<PlaneView>(source, 0, form.size.width, form.size.height);
        return;
    }
    planes = PlanarView<PictureView>(source, form.size);
    if (HasPairs(form)) SplitPairs(request, source, planes);
    layout.inputEnd = planes.luma.End();
    if (form.size.width % groupSamples == 0) return;
    planes.luma = WithPluginsNeighbours(planes.luma, planes.second);
    layout.inputEnd = planes.luma.End() + groupSamples;
}

/// The last group of a row looks at what stands behind the row: in the plug-in's buffers the next one, and the second plane
/// behind the last. A copy has the same there, whatever the caller's strides.
PlaneView PlaneStream::WithPluginsNeighbours(const PlaneView& luma, const PlaneView& second) {
    const auto rowBytes = static_cast<size_t>(luma.width);
    const size_t bytes = rowBytes * static_cast<size_t>(luma.height);
    uint8_t* samples = lumaCopy.Take(bytes + groupSamples);
    for (int32_t y = 0; y < luma.height; ++y) std::memcpy(samples + y * rowBytes, luma.Row(y), rowBytes);
    std::memcpy(samples + bytes, second.Row(0), groupSamples);
    return {samples, luma.width, luma.height, luma.width};
}

void PlaneStream::SplitPairs(const PlaneRequest& request, const SourcePlanes& source, PictureView& planes) {
    ImagePlanes split;
    PlaceChroma(sourceChroma.Take(ChromaBytes(request.source.size)), request.source.size, split);
    for (int32_t y = 0; y < split.second.height; ++y)
        request.kernels->deinterleave(source.plane[1] + y * source.stride[1], split.third.Row(y), split.second.Row(y),
                                      split.second.width);
    planes.second = split.second;
    planes.third = split.third;
}

/// An odd last row of a picture that keeps its size is none of the frame path's.
void PlaneStream::PlaceOutput(const PlaneRequest& request, const TargetPlanes& target, FrameLayout& layout) {
    const FrameSize written{request.targetWidth, layout.outputHeight};
    if (request.source.format == PixelFormat::yuy2) {
        layout.output.luma = PlaneOf<Plane>(target, 0, written.width, written.height);
        return;
    }
    layout.output = PlanarView<ImagePlanes>(target, written);
    if (HasPairs(request.source)) PlaceChroma(targetChroma.Take(ChromaBytes(written)), written, layout.output);
}

void CopyPicture(const PictureForm& form, const SourcePlanes& source, const TargetPlanes& target) {
    for (int32_t plane = 0; plane < PlaneCount(form.format); ++plane) CopyRows(form, plane, source, target, 0);
}

}  // namespace clarivex
