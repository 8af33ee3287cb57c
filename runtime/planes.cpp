#include "runtime/planes.h"

#include <algorithm>
#include <cstring>

#include "runtime/memory.h"

namespace clarivex {
namespace {

constexpr int32_t unitBytes = 64;  // row copies run in whole units where there is room for them
constexpr int32_t mostExtra = 32;  // but copy no more than this behind the width
constexpr int32_t mostSlack = 16;  // rows with no more than this between them count as touching

int32_t RoundUp(int32_t value, int32_t unit) { return (value + unit - 1) & ~(unit - 1); }

// The part that both planes share.
struct SharedPart {
    int32_t width;
    int32_t height;
    int32_t stride;
};

SharedPart SharedPartOf(const Plane& a, const PlaneView& b) {
    return {std::min(a.width, b.width), std::min(a.height, b.height), std::min(a.stride, b.stride)};
}

size_t BytesBefore(const uint8_t* end, const uint8_t* position) {
    if (end == nullptr) return SIZE_MAX;
    return position < end ? static_cast<size_t>(end - position) : 0;
}

void CopyRun(uint8_t* target, const uint8_t* source, size_t bytes, const CopyBounds& bounds) {
    bytes = std::min({bytes, BytesBefore(bounds.targetEnd, target), BytesBefore(bounds.sourceEnd, source)});
    std::memmove(target, source, bytes);  // a host may give one buffer for both
}

bool RowsTouch(const Plane& target, const PlaneView& source, const SharedPart& part) {
    return target.stride == source.stride && part.stride > 0 && part.stride <= part.width + mostSlack;
}

int32_t RowBytes(const PlaneView& source, const SharedPart& part) {
    const bool evenRows = reinterpret_cast<uintptr_t>(source.data) % 8 == 0 && source.stride % 8 == 0;
    const int32_t rounded = RoundUp(part.width, unitBytes);
    return evenRows && rounded <= part.stride && rounded <= part.width + mostExtra ? rounded : part.width;
}

}  // namespace

PlaneLayout LayoutPlanes(int32_t width, int32_t height) {
    constexpr int32_t spareRows = 16;
    PlaneLayout layout;
    layout.chromaWidth = (width + 1) / 2;
    layout.chromaHeight = (height + 1) / 2;
    layout.lumaStride = RoundUp(width, 64);
    layout.chromaStride = RoundUp(layout.chromaWidth, 32);
    layout.lumaBytes = static_cast<size_t>(RoundUp(height, 16) + spareRows) * static_cast<size_t>(layout.lumaStride);
    layout.chromaBytes =
        static_cast<size_t>(RoundUp(layout.chromaHeight, 16) + spareRows) * static_cast<size_t>(layout.chromaStride);
    if (4 * layout.chromaBytes <= layout.lumaBytes)
        layout.chromaBytes = layout.lumaBytes >> 2;
    else
        layout.lumaBytes = 4 * layout.chromaBytes;
    layout.blockBytes = layout.lumaBytes + 2 * layout.chromaBytes + 32;
    return layout;
}

ImagePlanes PlanesIn(uint8_t* block, const PlaneLayout& layout, int32_t width, int32_t height) {
    uint8_t* second = block + layout.lumaBytes;
    uint8_t* third = second + layout.chromaBytes;
    return {.luma = {block, width, height, layout.lumaStride},
            .second = {second, layout.chromaWidth, layout.chromaHeight, layout.chromaStride},
            .third = {third, layout.chromaWidth, layout.chromaHeight, layout.chromaStride}};
}

ImagePlanes PlanesWithoutGaps(uint8_t* samples, int32_t width, int32_t height) {
    const int32_t chromaWidth = (width + 1) / 2;
    const int32_t chromaHeight = (height + 1) / 2;
    uint8_t* second = samples + static_cast<ptrdiff_t>(width) * height;
    uint8_t* third = second + static_cast<ptrdiff_t>(chromaWidth) * chromaHeight;
    return {.luma = {samples, width, height, width},
            .second = {second, chromaWidth, chromaHeight, chromaWidth},
            .third = {third, chromaWidth, chromaHeight, chromaWidth}};
}

void AllocatePlanes(int32_t width, int32_t height, ImagePlanes& planes) {
    const PlaneLayout layout = LayoutPlanes(width, height);
    void* block = AllocRetry(layout.blockBytes);
    planes = PlanesIn(static_cast<uint8_t*>(block), layout, width, height);
    planes.owner = block;
}

void CopyPlane(const Plane& target, const PlaneView& source) { CopyPlane(target, source, CopyBounds{}); }

void CopyPlane(const Plane& target, const PlaneView& source, const CopyBounds& bounds) {
    const SharedPart part = SharedPartOf(target, source);
    if (part.width < 1 || part.height < 1) return;
    if (RowsTouch(target, source, part)) {
        const size_t bytes = static_cast<size_t>(part.height) * static_cast<size_t>(part.stride);
        CopyRun(target.data, source.data, bytes, bounds);
        return;
    }
    const auto rowBytes = static_cast<size_t>(RowBytes(source, part));
    for (int32_t y = 0; y < part.height; ++y) CopyRun(target.Row(y), source.Row(y), rowBytes, bounds);
}

void CopyPlanes(const ImagePlanes& target, const PictureView& source) { CopyPlanes(target, source, CopyBounds{}); }

void CopyPlanes(const ImagePlanes& target, const PictureView& source, const CopyBounds& bounds) {
    CopyPlane(target.luma, source.luma, bounds);
    if (source.third.data >= source.second.data) {
        CopyPlane(target.second, source.second, bounds);
        CopyPlane(target.third, source.third, bounds);
    } else {
        CopyPlane(target.third, source.third, bounds);
        CopyPlane(target.second, source.second, bounds);
    }
}

}  // namespace clarivex
