// The planes that a caller gives: whether they can be what they are said to be.
#pragma once

#include <clarivex/clarivex.h>

#include <cstdint>

#include "pipeline/picture_planes.h"

namespace clarivex {

/// A picture of one of the formats.
struct PictureKind {
    FrameSize size;
    int32_t format = CVX_FORMAT_I420;
};

bool IsFormat(int32_t format);

/// The same picture in the frame path's terms. The format is one of the constants.
PictureForm FormOf(const PictureKind& kind);

inline int32_t PlaneCount(int32_t format) { return PlaneCount(FormOf({{}, format}).format); }

/// plane  below PlaneCount
inline PlaneShape ShapeOf(const PictureKind& kind, int32_t plane) { return ShapeOf(FormOf(kind), plane); }

/// Whether both pictures can be used together: no plane missing, strides as long as their rows and inside the address space,
/// and no row of the target over another row.
cvx_result CheckPlanes(const PictureKind& sourceKind, const cvx_source& source, const PictureKind& targetKind,
                       const cvx_target& target);

}  // namespace clarivex
