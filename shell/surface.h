// Pictures in the buffers of video hosts: where the planes lie that a media type tells of.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "pipeline/picture_planes.h"
#include "shell/media_type.h"

namespace clarivex {

/// A picture in a buffer whose rows may be longer, and more, than the picture's. The sign of a type's height says nothing:
/// pictures of these formats are top-down. Planes follow each other without a gap, chroma with half of the luma's row length
/// and half of its rows, rounded up; pairs of chroma have rows of luma's length.
struct Surface {
    PictureForm picture;
    int32_t left = 0;  ///< of the picture's first sample in the buffer; even, as is `top`
    int32_t top = 0;
    int32_t rowSamples = 0;  ///< from row to row; even
    int32_t rows = 0;        ///< of the buffer

    bool operator==(const Surface&) const = default;
};

/// Reads a type that one of the formats has. The picture is what the type's rectangles say: of an input the source rectangle
/// and the target rectangle where that is empty, of an output the other way round, and all of the buffer where both are empty.
/// Other rectangles count for nothing.
///
/// result  nothing when the type is none that can be used (as IsAcceptedType, but for rectangles), its rows have an odd length,
///         or the rectangle leaves the buffer, begins at an odd place or is below 16 samples on a side
std::optional<Surface> ReadSurface(const DMO_MEDIA_TYPE& type, StreamSide side, std::span<const StreamFormat> formats);

/// Bytes of the whole buffer.
uint32_t BytesOf(const Surface& surface);

/// Points `planes` at the picture. False when the buffer ends before the picture does.
bool PlacePlanes(const Surface& surface, const InputBuffer& buffer, SourcePlanes& planes);
bool PlacePlanes(const Surface& surface, const OutputBuffer& buffer, TargetPlanes& planes);

}  // namespace clarivex
