// How the caption looks in a frame and where it stands in a picture: the arithmetic apart from the scene.
#pragma once

#include <cstdint>

#include "overlay/rasteriser.h"
#include "overlay/text_colour.h"

namespace clarivex {

constexpr const char* CaptionText = "Clarivex";

/// From this frame on the caption is gone. Frames are counted from 1.
constexpr int32_t captionEnd = 276;

/// 0 … 256: fades in over 72 frames, stands for 72 and fades out.
int32_t CaptionOpacity(int32_t frame);

struct CaptionColours {
    TextColour text;
    TextColour shadow;
};

/// Yellow over a darker shadow that is never quite opaque.
CaptionColours ColoursOf(int32_t frame);

/// Outlines of text and shadow in the picture, without an offset.
struct CaptionPlacement {
    OutlineTransform text;
    OutlineTransform shadow;
};

/// The lower left of a picture, in letters that follow its height, and its width where it is narrow.
///
/// width, height  0 … 65536
/// pixelAspect    width of a pixel in relation to its height; limited to 1/64 … 64, and 1 when that is no such number
CaptionPlacement PlaceCaption(int32_t width, int32_t height, float pixelAspect);

}  // namespace clarivex
