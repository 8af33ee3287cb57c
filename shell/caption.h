// The caption that the plug-in shows over the first frames of a stream, for programs with the plug-in linked in.
#pragma once

#include <cstdint>
#include <vector>

namespace clarivex {

/// Whether the player's media objects of this process show the caption. They do until told otherwise. May be called
/// while frames are processed.
void ShowCaption(bool on);

/// Whether this system has a font to draw the caption with. Without one there is no caption.
bool HasCaptionFont();

/// The caption alone, over grey: a 4:2:0 picture without gaps, Y, U, V.
///
/// frame          from 1 on
/// width, height  of the picture, 1 … 16384
/// pixelAspect    width of a pixel in relation to its height; limited to 1/64 … 64, and 1 when that is no such number
std::vector<uint8_t> DrawCaption(int32_t frame, int32_t width, int32_t height, float pixelAspect);

}  // namespace clarivex
