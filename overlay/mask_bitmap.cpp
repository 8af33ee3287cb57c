#include "overlay/mask_bitmap.h"

#include <algorithm>
#include <cstring>

namespace clarivex {

void MaskBitmap::Reallocate(int32_t newWidth, int32_t newHeight) {
    if (newWidth == width && newHeight == height) return;
    width = height = 0;
    pixels.reset();
    stride = (newWidth + 3) & ~3;
    pixels = MakeAlignedArray<uint8_t>(static_cast<size_t>(stride) * static_cast<size_t>(newHeight));
    width = newWidth;
    height = newHeight;
}

void MaskBitmap::ClearRectangle(const Rectangle& rectangle) {
    const int32_t left = std::max(rectangle.left, 0);
    const int32_t right = std::min(rectangle.right, width);
    const int32_t bottom = std::min(rectangle.bottom, height);
    if (left >= right) return;
    for (int32_t y = std::max(rectangle.top, 0); y < bottom; ++y)
        std::memset(Row(y) + left, 0, static_cast<size_t>(right - left));
}

}  // namespace clarivex
