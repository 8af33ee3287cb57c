// Pictures whose planes lie anywhere: what each format has of them, and where they begin.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pipeline/frame_request.h"
#include "runtime/planes.h"

namespace clarivex {

/// A picture of one of the formats, `other` excepted.
struct PictureForm {
    FrameSize size;
    PixelFormat format = PixelFormat::yv12;

    bool operator==(const PictureForm&) const = default;
};

/// Bytes of a row and rows of one plane.
struct PlaneShape {
    int32_t rowBytes = 0;
    int32_t rows = 0;
};

int32_t PlaneCount(PixelFormat format);

/// plane  below PlaneCount
PlaneShape ShapeOf(const PictureForm& form, int32_t plane);

/// The upper left sample of each plane, in the format's order, and the bytes from a row to the one below it, which may be
/// negative.
template <class Sample>
struct PlanePointers {
    Sample* plane[3] = {};
    ptrdiff_t stride[3] = {};
};
using SourcePlanes = PlanePointers<const uint8_t>;
using TargetPlanes = PlanePointers<uint8_t>;

/// Copies the rows of one plane from `firstRow` to the end of the source's, as they are. Target as wide as the source.
void CopyRows(const PictureForm& form, int32_t plane, const SourcePlanes& source, const TargetPlanes& target,
              int32_t firstRow);

}  // namespace clarivex
