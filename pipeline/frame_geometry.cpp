#include "pipeline/frame_geometry.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace clarivex {
namespace {

constexpr int64_t largestStride = std::numeric_limits<int32_t>::max();

bool IsEmpty(const PictureRect& rect) { return rect.right <= rect.left || rect.bottom <= rect.top; }

int64_t WidthOf(const PictureRect& rect) { return int64_t{rect.right} - rect.left; }

// Packed samples have whole bytes each; a planar type's bit count covers three planes and is none of a sample.
bool HasWholeBytes(const ImageFormat& format) { return format.bitCount != 0 && format.bitCount % 8 == 0; }

int64_t RoundUpTo4(int64_t bytes) { return (bytes + 3) & ~int64_t{3}; }

int64_t PlainStride(const ImageFormat& format) {
    return HasWholeBytes(format) ? RoundUpTo4(int64_t{format.bitCount >> 3} * format.width) : format.width;
}

// Stride of a packed decoder that may write into a buffer negotiated at the output's size.
int64_t PackedDecoderStride(const FrameRequest& request) {
    const ImageFormat& format = request.input;
    const int64_t bytes = format.bitCount >> 3;
    const int64_t visible = WidthOf(format.target);
    int64_t samples = format.width;
    if (RoundUpTo4(visible * bytes) >= PlainStride(format) - 127 && format.xPelsPerMeter == 0) {
        samples = WidthOf(request.source.target);
        samples = samples == 0 ? visible * 2 / 3 : samples;
    }
    const bool tight = request.sourceIsVih2WithoutBitrate && visible == request.sourceWidth;
    return tight ? 2 * visible : RoundUpTo4(samples * bytes);
}

bool StrideFits(int64_t stride) { return stride > 0 && stride <= largestStride; }

int64_t OffsetOf(const ImageFormat& format, int64_t stride) {
    if (IsEmpty(format.target) || !StrideFits(stride)) return 0;
    return int64_t{format.bitCount} * format.target.left / 8 + format.target.top * stride;
}

int64_t HeightOf(const ImageFormat& format) { return std::abs(int64_t{format.height}); }

// Farther than any buffer reaches, near enough that sums of offsets stay inside 64 bits.
constexpr int64_t farthestOffset = int64_t{1} << 60;

bool IsUsable(const LocatedImage& image) {
    return StrideFits(image.stride) && image.offset >= 0 && image.offset <= farthestOffset;
}

bool IsReasonable(const FrameSize& size) {
    return size.width <= largestSide && size.height <= largestSide && int64_t{size.width} * size.height <= largestArea;
}

/// The image that a buffer's type tells, and how much of it the buffer can hold.
struct ImageBuffer {
    size_t capacity;
    LocatedImage image;
    FrameSize size;
};

/// A plane as an offset into its buffer.
struct PlaneSpan {
    int64_t offset = 0;
    int64_t stride = 0;
    int64_t rowBytes = 0;
    int64_t rows = 0;
};

/// Of a packed picture only luma.
struct PictureSpans {
    PlaneSpan luma;
    PlaneSpan second;
    PlaneSpan third;
};

bool LiesIn(const ImageBuffer& buffer, const PlaneSpan& span) {
    const int64_t end = span.offset + (span.rows - 1) * span.stride + span.rowBytes;
    return StrideFits(span.stride) && static_cast<uint64_t>(end) <= buffer.capacity;
}

bool LayOutPacked(const ImageBuffer& buffer, PictureSpans& spans) {
    const int64_t pairs = (int64_t{buffer.size.width} + 1) / 2;
    spans.luma = {buffer.image.offset, buffer.image.stride, 4 * pairs, buffer.size.height};
    return LiesIn(buffer, spans.luma);
}

/// lumaRows, chromaRows  rows from the start of a plane to the start of the next
bool LayOutPlanar(const ImageBuffer& buffer, int64_t lumaRows, int64_t chromaRows, PictureSpans& spans) {
    const LocatedImage& image = buffer.image;
    const FrameSize& size = buffer.size;
    const int64_t chromaStride = image.stride / 2;
    spans.luma = {image.offset, image.stride, size.width, size.height};
    spans.second = {image.offset + lumaRows * image.stride, chromaStride, (size.width + 1) / 2, (size.height + 1) / 2};
    spans.third = spans.second;
    spans.third.offset += chromaRows * chromaStride;
    return LiesIn(buffer, spans.luma) && LiesIn(buffer, spans.second) && LiesIn(buffer, spans.third);
}

/// Chroma right behind the picture.
bool LayOutPlanar(const ImageBuffer& buffer, PictureSpans& spans) {
    return LayOutPlanar(buffer, buffer.image.height, buffer.image.height / 2, spans);
}

/// Ordinary decoders give the rectangle that asks for wide spacing, but a plain buffer: that one is taken as it is.
bool LayOutPlanarInput(const ImageBuffer& buffer, int64_t outputHeight, PictureSpans& spans) {
    const bool spaced =
        buffer.image.chromaAtOutputHeight && LayOutPlanar(buffer, outputHeight, (outputHeight + 1) / 2, spans);
    return spaced || LayOutPlanar(buffer, spans);
}

struct FrameSpans {
    PictureSpans input;
    PictureSpans output;
};

bool LayOutPlanes(PixelFormat format, const ImageBuffer& source, const ImageBuffer& target, FrameSpans& spans) {
    if (!IsUsable(source.image) || !IsUsable(target.image)) return false;
    if (format == PixelFormat::yuy2) return LayOutPacked(source, spans.input) && LayOutPacked(target, spans.output);
    return LayOutPlanarInput(source, target.size.height, spans.input) && LayOutPlanar(target, spans.output);
}

/// The picture in its buffer; packed rows are as wide in samples as the picture.
template <class Picture, class Byte>
Picture PlanesOf(Byte* buffer, const PictureSpans& spans, int32_t width) {
    const auto plane = [buffer](const PlaneSpan& span, int64_t columns) {
        return decltype(Picture::luma){buffer + span.offset, static_cast<int32_t>(columns),
                                       static_cast<int32_t>(span.rows), static_cast<int32_t>(span.stride)};
    };
    Picture picture;
    picture.luma = plane(spans.luma, width);
    if (spans.second.rows == 0) return picture;
    picture.second = plane(spans.second, spans.second.rowBytes);
    picture.third = plane(spans.third, spans.third.rowBytes);
    return picture;
}

// The capacity as far as pointers and their differences reach.
size_t ReachableBytes(const void* data, size_t capacity) {
    const uintptr_t behind = std::numeric_limits<uintptr_t>::max() - reinterpret_cast<uintptr_t>(data);
    constexpr auto farthest = static_cast<size_t>(std::numeric_limits<ptrdiff_t>::max());
    return std::min({capacity, static_cast<size_t>(behind), farthest});
}

HRESULT CheckBuffers(const FrameRequest& request, const OutputBuffer& output, const InputBuffer& input) {
    if (output.data == nullptr) return E_POINTER;
    if (!request.output.readable) return E_UNEXPECTED;
    if (input.data == nullptr) return E_POINTER;
    return request.input.readable && (request.source.readable || !request.scalingOn) ? S_OK : E_UNEXPECTED;
}

}  // namespace

FrameSize OutputSize(int32_t width, int32_t height, bool scalingOn) {
    if (!scalingOn) return {width, height & ~1};
    return {((width * 3) / 2 + 7) & ~7, ((height & ~1) * 3) / 2};
}

LocatedImage LocateInput(const FrameRequest& request) {
    const ImageFormat& format = request.input;
    const bool stretched = request.scalingOn && !IsEmpty(format.target);
    const bool wholeWidth = WidthOf(format.target) == request.sourceWidth;
    LocatedImage image;
    image.height = HeightOf(request.scalingOn ? request.source : format);
    image.stride = PlainStride(format);
    if (stretched && HasWholeBytes(format))
        image.stride = PackedDecoderStride(request);
    else if (stretched && wholeWidth && request.sourceIsVih2WithoutBitrate)
        image.stride = request.sourceWidth;
    else if (stretched && wholeWidth)
        image.chromaAtOutputHeight = true;
    image.offset = OffsetOf(format, image.stride);
    return image;
}

LocatedImage LocateOutput(const FrameRequest& request) {
    const int64_t stride = PlainStride(request.output);
    return {.height = HeightOf(request.output), .stride = stride, .offset = OffsetOf(request.output, stride)};
}

HRESULT LayOutFrame(const FrameRequest& request, const OutputBuffer& output, const InputBuffer& input,
                    FrameLayout& layout) {
    if (const HRESULT code = CheckBuffers(request, output, input); FAILED(code)) return code;
    layout = {};
    const FrameSize inSize{request.sourceWidth, request.sourceHeight};
    layout.tooSmall = inSize.width < smallestWidth || inSize.height < smallestHeight;
    if (layout.tooSmall) return S_OK;
    if (!IsReasonable(inSize) || !IsReasonable(OutputSize(inSize.width, inSize.height, request.scalingOn)))
        return E_INVALIDARG;
    const FrameSize outSize = OutputSize(inSize.width, inSize.height, request.scalingOn);
    layout.width = inSize.width;
    layout.height = inSize.height;
    layout.outputWidth = outSize.width;
    layout.outputHeight = outSize.height;
    const ImageBuffer source{ReachableBytes(input.data, input.capacity), LocateInput(request), inSize};
    const ImageBuffer target{ReachableBytes(output.data, output.capacity), LocateOutput(request), outSize};
    FrameSpans spans;
    if (!LayOutPlanes(request.format, source, target, spans)) return E_INVALIDARG;
    layout.input = PlanesOf<PictureView>(input.data, spans.input, inSize.width);
    layout.output = PlanesOf<ImagePlanes>(output.data, spans.output, outSize.width);
    layout.inputEnd = input.data + source.capacity;
    layout.outputEnd = output.data + target.capacity;
    return S_OK;
}

}  // namespace clarivex
