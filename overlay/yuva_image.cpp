#include "overlay/yuva_image.h"

#include <algorithm>
#include <cstring>

namespace clarivex {

void YuvaImage::Reallocate(int32_t newWidth, int32_t newHeight) {
    if (newWidth == width && newHeight == height) return;
    constexpr uint64_t spareBytes = 32;
    width = height = 0;
    pixels.reset();
    stride = (newWidth * pixelBytes + 31) / 32 * 32;
    const uint64_t rowsKept = static_cast<uint64_t>(newHeight + 15) / 16 * 16 + 1;
    const uint64_t bytes = rowsKept * static_cast<uint64_t>(stride) + spareBytes;
    pixels = MakeAlignedArray<uint8_t>(static_cast<size_t>(std::min<uint64_t>(bytes, SIZE_MAX)));
    width = newWidth;
    height = newHeight;
}

void YuvaImage::ClearRectangle(const Rectangle& rectangle) {
    const int32_t left = std::max(rectangle.left, 0);
    // With the row's end: what stands behind the last column goes into its tile group.
    const int32_t right = rectangle.right < width ? rectangle.right : stride / pixelBytes;
    for (int32_t y = std::max(rectangle.top, 0); y < std::min(rectangle.bottom, height); ++y)
        for (int32_t x = left; x < right; ++x) std::memcpy(Pixel(x, y), emptyPixel, pixelBytes);
}

}  // namespace clarivex
