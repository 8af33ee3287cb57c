// Colours of bitmaps and of video turned into each other: red, green and blue of 0 … 255, and luma and colour
// differences of standard definition (BT.601) in studio range: luma 16 … 235, chroma 16 … 240.
#pragma once

#include <vector>

#include "host/bitmap.h"
#include "host/picture.h"

namespace clarivex {

/// A 4:2:0 picture without gaps, Y, U, V. A chroma sample is that of the average colour of its up to four pixels.
std::vector<uint8_t> PlanarOf(const Bitmap& bitmap);

/// The colours of a picture, each chroma sample for its up to four pixels. Colours outside the cube are limited to it.
Bitmap BitmapOf(const PlanarPicture& picture);

}  // namespace clarivex
