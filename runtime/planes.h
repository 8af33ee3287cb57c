// Pictures as the frame path sees them: planes of 8-bit samples, three to a picture, and how they are copied.
#pragma once

#include <cstddef>
#include <cstdint>

namespace clarivex {

/// Columns and rows of a frame, in samples of luma.
struct FrameSize {
    int32_t width = 0;
    int32_t height = 0;

    bool operator==(const FrameSize&) const = default;
};

/// A view of 8-bit samples in rows that are only read. Owns nothing.
///
/// stride  samples from one row to the next; may be negative (a bottom-up picture), may be smaller than width in
///         pictures of odd strides, where a row's last sample shares its byte with the next row's first.
struct PlaneView {
    const uint8_t* data = nullptr;
    int32_t width = 0;
    int32_t height = 0;
    int32_t stride = 0;

    const uint8_t* Row(int32_t y) const { return data + static_cast<ptrdiff_t>(y) * stride; }

    /// Behind the last byte of the row that stands highest in memory.
    const uint8_t* End() const { return height == 0 ? data : Row(stride < 0 ? 0 : height - 1) + width; }
};

/// The same of samples that may be written.
struct Plane {
    uint8_t* data = nullptr;
    int32_t width = 0;
    int32_t height = 0;
    int32_t stride = 0;

    uint8_t* Row(int32_t y) const { return data + static_cast<ptrdiff_t>(y) * stride; }
    operator PlaneView() const { return {data, width, height, stride}; }
};

/// What is right of the first `columns` columns.
template <class PlaneKind>
PlaneKind RightOf(const PlaneKind& plane, int32_t columns) {
    return {plane.data + columns, plane.width - columns, plane.height, plane.stride};
}

/// Three planes of a 4:2:0 picture that is only read: luma, then two chroma planes of half the size in both directions,
/// rounded up. The second plane is V and the third U, except for IYUV pictures, which keep their own order.
struct PictureView {
    PlaneView luma;
    PlaneView second;
    PlaneView third;
};

/// The same of a picture that may be written.
struct ImagePlanes {
    Plane luma;
    Plane second;
    Plane third;
    void* owner = nullptr;  ///< the block that holds the samples, from AllocRetry, or null for a view

    operator PictureView() const { return {luma, second, third}; }
};

/// The bytes that a picture of working memory takes: strides, plane offsets and the block's size.
///
/// Luma rows are rounded up to 64 samples, chroma rows to 32; below each plane at least 16 spare rows follow, and the
/// chroma areas are each a quarter of the luma area, so that filters may run past the picture's last row.
struct PlaneLayout {
    int32_t chromaWidth = 0;
    int32_t chromaHeight = 0;
    int32_t lumaStride = 0;
    int32_t chromaStride = 0;
    size_t lumaBytes = 0;
    size_t chromaBytes = 0;
    size_t blockBytes = 0;
};

/// width, height  size of the luma plane in samples, each 0 … 65536.
PlaneLayout LayoutPlanes(int32_t width, int32_t height);

/// The planes of a picture in a block of layout.blockBytes; `owner` is null.
ImagePlanes PlanesIn(uint8_t* block, const PlaneLayout& layout, int32_t width, int32_t height);

/// Views of a 4:2:0 picture without gaps: luma, the second plane behind it, then the third; `owner` is null.
///
/// width, height  of the luma plane, at least 1; chroma sizes are rounded up
ImagePlanes PlanesWithoutGaps(uint8_t* samples, int32_t width, int32_t height);

/// Points `planes` at a fresh block from AllocRetry laid out by LayoutPlanes; the block is not cleared and belongs to
/// the caller (`planes.owner`, to be given to AlignedFree). What `planes` held before is not freed.
void AllocatePlanes(int32_t width, int32_t height, ImagePlanes& planes);

/// Copies the part that both planes share. Bytes to the right of it may be copied too, up to 32 and never past the
/// smaller stride; rows below it never are. The planes may not overlap.
void CopyPlane(const Plane& target, const PlaneView& source);

/// CopyPlane for luma, then for both chroma planes in the order of their addresses in the source.
void CopyPlanes(const ImagePlanes& target, const PictureView& source);

/// Ends of the memory that two planes lie in, for planes in buffers that are not ours; null: no limit.
struct CopyBounds {
    const uint8_t* targetEnd = nullptr;
    const uint8_t* sourceEnd = nullptr;
};

/// The same bytes as CopyPlane, except that nothing is read at or behind sourceEnd nor written at or behind targetEnd.
void CopyPlane(const Plane& target, const PlaneView& source, const CopyBounds& bounds);
void CopyPlanes(const ImagePlanes& target, const PictureView& source, const CopyBounds& bounds);

}  // namespace clarivex
