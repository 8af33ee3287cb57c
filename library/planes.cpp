#include "library/planes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>

namespace clarivex {
namespace {

/// What a plane takes of the address space, its rows counted upwards from the lowest.
struct Extent {
    uintptr_t first = 0;
    uintptr_t end = 0;
    uint64_t stride = 0;
    uint64_t rowBytes = 0;
};

/// The planes of both pictures, the target's first.
struct Extents {
    std::array<Extent, 6> planes;
    size_t count = 0;
};

/// Works out the extent of a plane. CVX_ERROR_STRIDE where it has none.
cvx_result Measure(const uint8_t* plane, ptrdiff_t stride, const PlaneShape& shape, Extent& extent) {
    constexpr int64_t longest = std::numeric_limits<int32_t>::max();
    if (plane == nullptr) return CVX_ERROR_NULL;
    if (stride < -longest || stride > longest) return CVX_ERROR_STRIDE;
    const auto length = static_cast<uint64_t>(std::abs(int64_t{stride}));
    const auto rowBytes = static_cast<uint64_t>(shape.rowBytes);
    if (length < rowBytes) return CVX_ERROR_STRIDE;
    const uint64_t reach = length * static_cast<uint64_t>(shape.rows - 1);
    const auto address = reinterpret_cast<uintptr_t>(plane);
    const uint64_t below = stride < 0 ? reach : 0;
    const uint64_t above = reach - below + rowBytes;
    if (below > address || above > std::numeric_limits<uintptr_t>::max() - address) return CVX_ERROR_STRIDE;
    extent = {address - static_cast<uintptr_t>(below), address + static_cast<uintptr_t>(above), length, rowBytes};
    return CVX_OK;
}

template <class Picture>
cvx_result MeasureAll(const PictureKind& kind, const Picture& picture, Extents& extents) {
    for (int32_t plane = 0; plane < PlaneCount(kind.format); ++plane) {
        Extent& extent = extents.planes[extents.count++];
        const cvx_result result = Measure(picture.plane[plane], picture.stride[plane], ShapeOf(kind, plane), extent);
        if (result != CVX_OK) return result;
    }
    return CVX_OK;
}

/// Rows of planes with equal strides may lie beside one another; other planes that reach into each other count as one over
/// the other.
bool Overlap(const Extent& a, const Extent& b) {
    if (a.end <= b.first || b.end <= a.first) return false;
    if (a.stride != b.stride) return true;
    const Extent& lower = a.first <= b.first ? a : b;
    const Extent& upper = a.first <= b.first ? b : a;
    const uint64_t beside = (upper.first - lower.first) % a.stride;
    return beside < lower.rowBytes || beside + upper.rowBytes > a.stride;
}

}  // namespace

bool IsFormat(int32_t format) { return format >= CVX_FORMAT_I420 && format <= CVX_FORMAT_YUY2; }

PictureForm FormOf(const PictureKind& kind) {
    constexpr PixelFormat formats[] = {PixelFormat::iyuv, PixelFormat::yv12, PixelFormat::nv12, PixelFormat::yuy2};
    return {kind.size, formats[kind.format]};
}

cvx_result CheckPlanes(const PictureKind& sourceKind, const cvx_source& source, const PictureKind& targetKind,
                       const cvx_target& target) {
    Extents extents;
    if (const cvx_result result = MeasureAll(targetKind, target, extents); result != CVX_OK) return result;
    const size_t written = extents.count;
    if (const cvx_result result = MeasureAll(sourceKind, source, extents); result != CVX_OK) return result;
    for (size_t i = 0; i < written; ++i)
        for (size_t other = i + 1; other < extents.count; ++other)
            if (Overlap(extents.planes[i], extents.planes[other])) return CVX_ERROR_OVERLAP;
    return CVX_OK;
}

}  // namespace clarivex
