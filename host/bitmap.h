// Reads and writes Windows bitmaps ("BMP") of plain, uncompressed pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "host/byte_stream.h"
#include "host/picture.h"

namespace clarivex {

/// A picture of red, green and blue, top row first, without gaps.
struct Bitmap {
    PictureSize size;
    std::vector<uint8_t> pixels;  ///< blue, green, red of each: bytesAPixel · width · height

    static constexpr size_t bytesAPixel = 3;
};

/// Reads a bitmap of 24 or 32 bits a pixel with sides of 1 … largestPictureSide, stored from the bottom up or from the
/// top down. The fourth byte of a pixel of 32 bits is ignored. Takes no more memory than what the stream holds asks for.
/// Throws RunError that names the field for anything else, and for a stream that ends too early.
Bitmap ReadBitmap(ByteSource& source);

/// Writes 24 bits a pixel from the bottom up. Throws RunError.
void WriteBitmap(ByteSink& sink, const Bitmap& bitmap);

}  // namespace clarivex
