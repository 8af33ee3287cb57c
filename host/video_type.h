// The media type of a video stream, as a player states it to the media object.
#pragma once

#include <cstdint>
#include <optional>

#include "host/picture.h"
#include "platform/win32.h"

namespace clarivex {

struct VideoFormat {
    SampleFormat pixelFormat = SampleFormat::yv12;
    PictureSize size;
    Ratio frameRate;     ///< frames a second; unknown: frames carry no times
    Ratio sampleAspect;  ///< width to height of a sample; unknown: none is stated
};

/// A VIDEOINFOHEADER2 media type with empty rectangles: the whole picture, top row first in memory for these formats.
class VideoType {
public:
    explicit VideoType(const VideoFormat& format);
    VideoType(const VideoType&) = delete;
    VideoType& operator=(const VideoType&) = delete;

    /// Valid as long as this object; its format block must not be freed.
    const DMO_MEDIA_TYPE& Type() const { return type; }

private:
    VIDEOINFOHEADER2 header = {};
    DMO_MEDIA_TYPE type = {};
};

/// The width : height at which a picture is shown, reduced to fit 32 bits; 0:0 with an unknown sample aspect.
Ratio PictureAspect(PictureSize size, Ratio sampleAspect);

/// The picture size in a type of the form VideoType makes, |biHeight| being the height. Nothing when the type has
/// another form or subtype than `format` would have, or no sensible size.
std::optional<PictureSize> PictureSizeIn(const DMO_MEDIA_TYPE& type, SampleFormat format);

}  // namespace clarivex
