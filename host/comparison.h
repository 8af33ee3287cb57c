// Two pictures of one moment beside each other, as a PNG file. Behind it stand FFmpeg's libraries where the program is
// built with them (host/film/), and otherwise a refusal (host/windows/).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/options.h"
#include "host/picture.h"
#include "host/report.h"
#include "host/video_colour.h"

namespace clarivex {

/// The same picture before and after, both 4:2:0. Owns nothing.
struct ComparedPictures {
    PictureSize plainSize;
    PicturePlanes plain;
    PictureSize enhancedSize;
    PicturePlanes enhanced;
    VideoColour colour;  ///< of both, nothing left untold
};

/// How they are shown.
struct ComparisonView {
    std::optional<PictureCrop> crop;  ///< of the enhanced picture; all of it where there is none
    int32_t zoom = 1;
    ComparisonLayout layout = ComparisonLayout::side;
};

/// The plain picture, enlarged bicubically to the enhanced one's size, at the left and the enhanced one at the right, in
/// the bytes of a PNG file. Each bears a small label, unless there is no font or no room: then a note tells so. Throws
/// RunError for a crop outside the enhanced picture, for more pixels than a picture should have, and where this program
/// writes no PNG files.
std::vector<uint8_t> ComparisonPng(const ComparedPictures& pictures, const ComparisonView& view, Report& report);

}  // namespace clarivex
