// Levels of full range brought to those of video.
#pragma once

#include <cstdint>
#include <span>

#include "host/picture.h"

namespace clarivex {

/// Brings a picture from full to video range, in place and to the nearest level: luma 0 … 255 to 16 … 235, chroma 0 … 255 to
/// 16 … 240 with 128 where it was.
void ToVideoRange(const WritablePlanes& planes);

}  // namespace clarivex
