// How the samples of a video stand for colours, in the code points that all containers share.
#pragma once

#include <cstdint>

#include "host/picture.h"

namespace clarivex {

/// Code points of ITU-T H.273, 2 being "not told". The range is always the video range.
struct VideoColour {
    static constexpr int32_t untold = 2;

    int32_t primaries = untold;
    int32_t transfer = untold;
    int32_t matrix = untold;
    ChromaSite chromaSite = ChromaSite::unknown;

    bool operator==(const VideoColour&) const = default;
};

/// The same with what is not told filled in by what a player assumes of a picture with so many lines: BT.601 up to 576, for
/// 525 or 625 lines, and BT.709 beyond. So a picture that is enlarged over that border keeps its colours.
VideoColour WithAssumedColour(VideoColour told, int32_t lines);

}  // namespace clarivex
