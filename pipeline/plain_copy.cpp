#include "pipeline/plain_copy.h"

#include "runtime/planes.h"

namespace clarivex {
namespace {

/// Packed rows as a plane of bytes.
template <class PlaneKind>
PlaneKind BytesOf(PlaneKind packed) {
    packed.width *= 2;
    return packed;
}

}  // namespace

void PlainCopy(PixelFormat format, const FrameLayout& layout) {
    const CopyBounds bounds{.targetEnd = layout.outputEnd, .sourceEnd = layout.inputEnd};
    if (format == PixelFormat::yuy2) {
        CopyPlane(BytesOf(layout.output.luma), BytesOf(layout.input.luma), bounds);
        return;
    }
    CopyPlane(layout.output.luma, layout.input.luma, bounds);
    CopyPlane(layout.output.second, layout.input.second, bounds);
    CopyPlane(layout.output.third, layout.input.third, bounds);
}

}  // namespace clarivex
