#include "shell/surface.h"

#include <array>
#include <cstdlib>

namespace clarivex {
namespace {

constexpr int32_t smallestSide = 16;

/// One plane in the buffer, in bytes.
struct PlanePlace {
    int64_t offset = 0;
    int64_t stride = 0;
};

bool IsEmpty(const RECT& rect) { return rect.right <= rect.left || rect.bottom <= rect.top; }

/// The one that counts; all of the buffer where neither does.
RECT PictureRectOf(const VideoHeader& header, StreamSide side, int32_t rows) {
    const RECT& first = side == StreamSide::input ? header.source : header.target;
    const RECT& second = side == StreamSide::input ? header.target : header.source;
    if (!IsEmpty(first)) return first;
    return !IsEmpty(second) ? second : RECT{0, 0, header.bitmap.biWidth, rows};
}

bool CanBePicture(const RECT& rect, const Surface& surface) {
    const bool inside =
        rect.left >= 0 && rect.top >= 0 && rect.right <= surface.rowSamples && rect.bottom <= surface.rows;
    return inside && rect.left % 2 == 0 && rect.top % 2 == 0 && rect.right - rect.left >= smallestSide &&
           rect.bottom - rect.top >= smallestSide;
}

/// The buffer's planes, from their first byte on.
std::array<PlanePlace, 3> BufferPlanes(const Surface& surface) {
    const int64_t length = surface.rowSamples;
    const int64_t luma = length * surface.rows;
    switch (surface.picture.format) {
        case PixelFormat::yuy2: return {{{0, 2 * length}}};
        case PixelFormat::nv12: return {{{0, length}, {luma, length}}};
        default: return {{{0, length}, {luma, length / 2}, {luma + length / 2 * ((surface.rows + 1) / 2), length / 2}}};
    }
}

/// From a plane's first byte to the picture's.
int64_t OffsetOfPicture(const Surface& surface, int32_t plane, int64_t stride) {
    const PixelFormat format = surface.picture.format;
    if (format == PixelFormat::yuy2) return surface.top * stride + 2 * int64_t{surface.left};
    if (plane == 0) return surface.top * stride + surface.left;
    return surface.top / 2 * stride + (format == PixelFormat::nv12 ? surface.left : surface.left / 2);
}

template <class Buffer, class Planes>
bool Place(const Surface& surface, const Buffer& buffer, Planes& planes) {
    const auto places = BufferPlanes(surface);
    for (int32_t plane = 0; plane < PlaneCount(surface.picture.format); ++plane) {
        const auto& [start, stride] = places[static_cast<size_t>(plane)];
        const PlaneShape shape = ShapeOf(surface.picture, plane);
        const int64_t first = start + OffsetOfPicture(surface, plane, stride);
        const int64_t end = first + (shape.rows - 1) * stride + shape.rowBytes;
        if (static_cast<uint64_t>(end) > buffer.capacity) return false;
        planes.plane[plane] = buffer.data + first;
        planes.stride[plane] = static_cast<ptrdiff_t>(stride);
    }
    return true;
}

}  // namespace

std::optional<Surface> ReadSurface(const DMO_MEDIA_TYPE& type, StreamSide side, std::span<const StreamFormat> formats) {
    const std::optional<VideoHeader> header = ReadUsableHeader(type, side, formats);
    if (!header || header->bitmap.biWidth % 2 != 0) return std::nullopt;
    Surface surface;
    surface.rowSamples = header->bitmap.biWidth;
    surface.rows = std::abs(static_cast<int32_t>(header->bitmap.biHeight));
    const RECT rect = PictureRectOf(*header, side, surface.rows);
    if (!CanBePicture(rect, surface)) return std::nullopt;
    surface.left = rect.left;
    surface.top = rect.top;
    surface.picture = {{static_cast<int32_t>(rect.right - rect.left), static_cast<int32_t>(rect.bottom - rect.top)},
                       PixelFormatOf(type, formats)};
    return surface;
}

uint32_t BytesOf(const Surface& surface) {
    const int64_t length = surface.rowSamples;
    const int64_t chroma = length * ((surface.rows + 1) / 2);
    const bool packed = surface.picture.format == PixelFormat::yuy2;
    return static_cast<uint32_t>(length * surface.rows + (packed ? length * surface.rows : chroma));
}

bool PlacePlanes(const Surface& surface, const InputBuffer& buffer, SourcePlanes& planes) {
    return Place(surface, buffer, planes);
}

bool PlacePlanes(const Surface& surface, const OutputBuffer& buffer, TargetPlanes& planes) {
    return Place(surface, buffer, planes);
}

}  // namespace clarivex
