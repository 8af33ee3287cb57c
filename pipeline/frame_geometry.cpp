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

// One buffer and the image that its type tells.
struct ImageBuffer {
    uint8_t* data;
    size_t capacity;
    LocatedImage image;
    FrameSize size;
};

// A plane as an offset into its buffer.
struct PlaneSpan {
    int64_t offset;
    int64_t stride;
    int64_t rowBytes;
    int64_t rows;
};

bool LiesIn(const ImageBuffer& buffer, const PlaneSpan& span) {
    const int64_t end = span.offset + (span.rows - 1) * span.stride + span.rowBytes;
    return StrideFits(span.stride) && static_cast<uint64_t>(end) <= buffer.capacity;
}

Plane ViewOf(const ImageBuffer& buffer, const PlaneSpan& span, int64_t width) {
    return {buffer.data + span.offset, static_cast<int32_t>(width), static_cast<int32_t>(span.rows),
            static_cast<int32_t>(span.stride)};
}

bool LayOutPacked(const ImageBuffer& buffer, ImagePlanes& planes) {
    const int64_t pairs = (int64_t{buffer.size.width} + 1) / 2;
    const PlaneSpan rows{buffer.image.offset, buffer.image.stride, 4 * pairs, buffer.size.height};
    if (!LiesIn(buffer, rows)) return false;
    planes.luma = ViewOf(buffer, rows, buffer.size.width);
    return true;
}

// lumaRows, chromaRows: rows from the start of a plane to the start of the next.
bool LayOutPlanar(const ImageBuffer& buffer, int64_t lumaRows, int64_t chromaRows, ImagePlanes& planes) {
    const LocatedImage& image = buffer.image;
    const FrameSize& size = buffer.size;
    const int64_t chromaStride = image.stride / 2;
    const PlaneSpan luma{image.offset, image.stride, size.width, size.height};
    const PlaneSpan second{image.offset + lumaRows * image.stride, chromaStride, (size.width + 1) / 2,
                           (size.height + 1) / 2};
    PlaneSpan third = second;
    third.offset += chromaRows * chromaStride;
    if (!LiesIn(buffer, luma) || !LiesIn(buffer, second) || !LiesIn(buffer, third)) return false;
    planes.luma = ViewOf(buffer, luma, luma.rowBytes);
    planes.second = ViewOf(buffer, second, second.rowBytes);
    planes.third = ViewOf(buffer, third, third.rowBytes);
    return true;
}

// Chroma right behind the picture.
bool LayOutPlanar(const ImageBuffer& buffer, ImagePlanes& planes) {
    return LayOutPlanar(buffer, buffer.image.height, buffer.image.height / 2, planes);
}

// Ordinary decoders give the rectangle that asks for wide spacing, but a plain buffer: that one is taken as it is.
bool LayOutPlanarInput(const ImageBuffer& buffer, int64_t outputHeight, ImagePlanes& planes) {
    const bool spaced =
        buffer.image.chromaAtOutputHeight && LayOutPlanar(buffer, outputHeight, (outputHeight + 1) / 2, planes);
    return spaced || LayOutPlanar(buffer, planes);
}

bool LayOutPlanes(PixelFormat format, const ImageBuffer& source, const ImageBuffer& target, FrameLayout& layout) {
    if (!IsUsable(source.image) || !IsUsable(target.image)) return false;
    if (format == PixelFormat::yuy2) return LayOutPacked(source, layout.input) && LayOutPacked(target, layout.output);
    return LayOutPlanarInput(source, target.size.height, layout.input) && LayOutPlanar(target, layout.output);
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
    const ImageBuffer source{const_cast<uint8_t*>(input.data), ReachableBytes(input.data, input.capacity),
                             LocateInput(request), inSize};
    const ImageBuffer target{output.data, ReachableBytes(output.data, output.capacity), LocateOutput(request), outSize};
    layout.inputEnd = source.data + source.capacity;
    layout.outputEnd = target.data + target.capacity;
    return LayOutPlanes(request.format, source, target, layout) ? S_OK : E_INVALIDARG;
}

}  // namespace clarivex
