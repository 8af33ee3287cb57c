// What the media object hands to the frame path: the negotiated formats, the settings of one frame and its buffers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace clarivex {

/// Y, V, U; Y, U, V; rows of Y0 U Y1 V; Y with pairs of U and V, which comes as planes only and never in a FrameRequest's
/// buffers.
enum class PixelFormat { yv12, iyuv, yuy2, nv12, other };

/// A target rectangle of a media type, in samples; empty when right <= left or bottom <= top.
struct PictureRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool operator==(const PictureRect&) const = default;
};

/// What a media type says of its picture.
///
/// width, height  biWidth and biHeight as they stand; height is negative for a top-down picture
/// readable       the type has a format block of a known kind with a whole bitmap header in it
struct ImageFormat {
    bool readable = false;
    int32_t width = 0;
    int32_t height = 0;
    int32_t bitCount = 0;
    int32_t xPelsPerMeter = 0;
    PictureRect target;

    bool operator==(const ImageFormat&) const = default;
};

/// Memory that may be read or written: `capacity` bytes from `data`.
struct InputBuffer {
    const uint8_t* data = nullptr;
    size_t capacity = 0;
};
struct OutputBuffer {
    uint8_t* data = nullptr;
    size_t capacity = 0;
};

/// One frame: formats settled in the negotiation and the user's settings as they stand now. Values only.
struct FrameRequest {
    PixelFormat format = PixelFormat::other;  ///< subtype of the input type; both buffers have it
    ImageFormat input;                        ///< of the input type
    ImageFormat output;                       ///< of the output type
    ImageFormat source;                       ///< of the input type as it was when the output type was offered
    int32_t sourceWidth = 0;                  ///< picture size after clipping to the target rectangle
    int32_t sourceHeight = 0;
    bool scalingOn = false;  ///< the stream is enlarged and all planes are enhanced
    bool sourceIsVih2WithoutBitrate = false;
    float pixelAspect = 1.0F;
    bool newStream = false;      ///< first frame since an input type was set
    bool settingsDirty = false;  ///< the sharpness changed since the last frame
    bool enabled = true;         ///< false: frames are copied without enhancement
    bool enableLighting = true;
    bool noiseOn = true;
    bool aspectCounts = false;    ///< in planar pictures too, which otherwise count as of square pixels
    bool liftSizeLimits = false;  ///< pictures of every size are enhanced, and enlarged on both axes where scalingOn
    float sharpness = 1.0F;       ///< slider value, 0 … 2; below 0 and no number count as no strength

    bool operator==(const FrameRequest&) const = default;
};

}  // namespace clarivex
