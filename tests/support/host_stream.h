// What a host does with a media object: it negotiates a stream, gives a buffer and takes one, and knows where the
// samples lie in both.
#pragma once

#include <cstdint>

#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {

constexpr unsigned neverEnlarged = 0;
constexpr unsigned alwaysEnlarged = 2;

/// A picture of a media type, whole or clipped by its target rectangle.
struct HostSize {
    int32_t typeWidth, typeHeight;
    int32_t width = typeWidth, height = typeHeight;

    bool IsClipped() const { return width != typeWidth || height != typeHeight; }
    int32_t EnlargedWidth() const { return (width * 3 / 2 + 7) / 8 * 8; }
    int32_t EnlargedHeight() const { return height / 2 * 3; }
};

/// Starts a stream; the output type becomes what is offered. Gives the offered picture's header.
inline BITMAPINFOHEADER Negotiate(TestObject& object, const GUID& subtype, const HostSize& size, unsigned mode) {
    VideoInfoType type(size.typeWidth, size.typeHeight, subtype);
    if (size.IsClipped()) type.Target() = {0, 0, size.width, size.height};
    ReceivedType offered;
    object.settings->put_CVXMode(mode);
    Require(object.media->SetInputType(0, type.Type(), 0), "the input type was refused");
    Require(object.media->GetOutputType(0, 0, offered.Out()), "nothing was offered");
    Require(object.media->SetOutputType(0, &offered.Get(), 0), "the offered type was refused");
    return offered.As<VIDEOINFOHEADER>().bmiHeader;
}

/// One frame from buffer to buffer.
inline HRESULT PlayFrame(TestObject& object, FakeBuffer& in, FakeBuffer& out) {
    DMO_OUTPUT_DATA_BUFFER output = {&out, 0, 0, 0};
    const HRESULT given = object.media->ProcessInput(0, &in, 0, 0, 0);
    return given == S_OK ? object.media->ProcessOutput(0, 1, &output, nullptr) : given;
}

/// The rows and planes of a picture in a host's buffer. Planes: 0 is luma, 1 and 2 are chroma in the order in which they
/// lie in memory; of packed pictures 1 is V and 2 is U. All sizes in samples.
struct HostPicture {
    bool packed = false;
    int32_t width = 0;       ///< from row to row
    int32_t lumaRows = 0;    ///< to the start of the second plane
    int32_t chromaRows = 0;  ///< from there to the start of the third

    /// Without gaps.
    HostPicture(const GUID& subtype, int32_t typeWidth, int32_t typeHeight)
        : packed(IsEqualGUID(subtype, mediaSubtypeYuy2)),
          width(typeWidth),
          lumaRows(typeHeight),
          chromaRows(typeHeight / 2) {}

    /// As a decoder leaves it. One that clips for an enlarged stream writes as if into the larger output: packed rows are
    /// as long as the rectangle is wide, planes as far apart as the output's.
    static HostPicture Decoded(const GUID& subtype, const HostSize& size, bool enlarged) {
        HostPicture picture(subtype, size.typeWidth, size.typeHeight);
        if (!enlarged || !size.IsClipped()) return picture;
        if (picture.packed) return {subtype, size.width, size.typeHeight};
        picture.lumaRows = size.EnlargedHeight();
        picture.chromaRows = (picture.lumaRows + 1) / 2;
        return picture;
    }

    int32_t Stride() const { return packed ? (2 * width + 3) / 4 * 4 : width; }

    size_t PlaceOf(int32_t plane, int32_t x, int32_t y) const {
        if (packed) return static_cast<size_t>(y * Stride() + (plane == 0 ? 2 * x : 4 * x + 5 - 2 * plane));
        if (plane == 0) return static_cast<size_t>(y * width + x);
        return static_cast<size_t>(lumaRows * width + (y + (plane == 2 ? chromaRows : 0)) * (width / 2) + x);
    }

    /// Bytes up to the last sample of the first columns and rows.
    size_t BytesOf(int32_t columns, int32_t rows) const {
        if (packed) return static_cast<size_t>((rows - 1) * Stride() + (columns + 1) / 2 * 4);
        return PlaceOf(2, (columns + 1) / 2 - 1, (rows + 1) / 2 - 1) + 1;
    }
};

}  // namespace clarivex
