// Levels of full range brought to those of video.
#pragma once

#include <cstdint>
#include <span>

#include "host/picture.h"

namespace clarivex {

/// Brings a 4:2:0 picture in one piece (Y, U, V) from full to video range, in place and to the nearest level: luma 0 … 255
/// to 16 … 235, chroma 0 … 255 to 16 … 240 with 128 where it was.
///
/// samples  size.PlanarBytes()
void ToVideoRange(PictureSize size, std::span<uint8_t> samples);

}  // namespace clarivex
