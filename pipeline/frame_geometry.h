// Where the picture lies in the input and the output buffer, and whether both hold it whole.
#pragma once

#include <cstdint>

#include "pipeline/frame_request.h"
#include "platform/win32.h"
#include "runtime/planes.h"

namespace clarivex {

constexpr int32_t smallestWidth = 32;
constexpr int32_t smallestHeight = 8;

/// Limits that keep every size and product of a frame far inside 32 bits.
constexpr int32_t largestSide = 65536;
constexpr int64_t largestArea = int64_t{1} << 28;

/// Size of the picture that is written. Scaled: three halves, the width rounded up to 8; otherwise an even height.
///
/// width, height  of the source, 0 … largestSide
FrameSize OutputSize(int32_t width, int32_t height, bool scalingOn);

/// Columns of OutputSize that the source itself fills: an even number where they are enlarged, so that chroma goes along.
/// What is right of them repeats the last one, or is black in packed pictures.
///
/// width  of the source, at least 2
constexpr int32_t WidthWithoutPadding(int32_t width, bool scalingOn) {
    return scalingOn ? ((3 * width) >> 1) & ~1 : width;
}

/// An image in a buffer as its media type tells it, before anything is checked against the buffer.
///
/// height, stride         luma or packed rows; stride in bytes, may be nonsense when the type is
/// offset                 bytes from the buffer's start to the first sample
/// chromaAtOutputHeight   the decoder has spaced the planes for the output's height
struct LocatedImage {
    int64_t height = 0;
    int64_t stride = 0;
    int64_t offset = 0;
    bool chromaAtOutputHeight = false;
};

/// The image of the request's input or output type. `format` was readable.
LocatedImage LocateInput(const FrameRequest& request);
LocatedImage LocateOutput(const FrameRequest& request);

/// What the frame path reads and writes. Every sample of every plane lies inside its buffer.
///
/// tooSmall     the picture is below the smallest size: nothing is to be done and no plane is set
/// input        width × height, output outputWidth × outputHeight. A planar frame has three planes. Of a packed one
///              only luma is set: its width in samples, its stride in bytes, rows of 4 bytes for each pair of samples.
///
/// A program that has planes instead of buffers makes a layout of its own:
/// - The input may lie anywhere, its strides may be negative. inputEnd ends the luma plane; chroma is read sample by sample.
/// - outputEnd is null: rows end with the picture, nothing behind them is written, and strides may be negative. What a frame
///   leaves of a packed output becomes the source's at the same place, or black.
/// - The output may be narrower than outputWidth: what is right of it is left out.
///
/// inputEnd     end of the input buffer: what follows a row or plane may be read up to here
/// outputEnd    end of the output buffer: fills are clipped to it
struct FrameLayout {
    bool tooSmall = false;
    int32_t width = 0;
    int32_t height = 0;
    int32_t outputWidth = 0;
    int32_t outputHeight = 0;
    PictureView input;
    ImagePlanes output;
    const uint8_t* inputEnd = nullptr;
    uint8_t* outputEnd = nullptr;
};

/// Works out the layout of one frame. Planes spaced for the output's height are taken as plain ones when the input
/// buffer holds only those.
///
/// request  with one of the three known formats
/// result   E_POINTER for a null buffer, E_UNEXPECTED for a format that cannot be read, E_INVALIDARG for sizes, strides
///          or origins that make no picture or a buffer too small for it; `layout` is then not to be used.
HRESULT LayOutFrame(const FrameRequest& request, const OutputBuffer& output, const InputBuffer& input,
                    FrameLayout& layout);

}  // namespace clarivex
