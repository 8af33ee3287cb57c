// The planes that a caller gives: what each format has of them, and whether they can be what they are said to be.
#pragma once

#include <clarivex/clarivex.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "runtime/planes.h"

namespace clarivex {

/// A picture of one of the formats.
struct PictureKind {
    FrameSize size;
    int32_t format = CVX_FORMAT_I420;
};

/// Bytes of a row and rows of one plane; none of a plane that the format has not.
struct PlaneShape {
    int32_t rowBytes = 0;
    int32_t rows = 0;
};

bool IsFormat(int32_t format);

int32_t PlaneCount(int32_t format);

/// plane  below PlaneCount
PlaneShape ShapeOf(const PictureKind& kind, int32_t plane);

/// Whether both pictures can be used together: no plane missing, strides as long as their rows and inside the address space,
/// and no row of the target over another row.
cvx_result CheckPlanes(const PictureKind& sourceKind, const cvx_source& source, const PictureKind& targetKind,
                       const cvx_target& target);

/// Copies the rows of one plane from `firstRow` to the end of the source's, as they are. Target as wide as the source.
void CopyRows(const PictureKind& kind, int32_t plane, const cvx_source& source, const cvx_target& target,
              int32_t firstRow);

}  // namespace clarivex
