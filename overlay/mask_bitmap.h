// The target that outlines are rasterised into: coverage, one byte a pixel.
#pragma once

#include <cstdint>

#include "overlay/rectangle.h"
#include "runtime/memory.h"

namespace clarivex {

/// Coverage 0 … 255 in rows of a multiple of 4 bytes. Starts with no pixels.
class MaskBitmap {
public:
    /// Gives the mask another size, at least 0 on each side; the pixels are then not set. The same size does nothing.
    void Reallocate(int32_t newWidth, int32_t newHeight);

    /// Sets the part of the rectangle that lies inside the mask to 0.
    void ClearRectangle(const Rectangle& rectangle);

    int32_t AllocatedWidth() const { return width; }
    int32_t AllocatedHeight() const { return height; }

    /// Bytes from one row to the next.
    int32_t Stride() const { return stride; }

    /// Row y, 0 … height − 1.
    uint8_t* Row(int32_t y) { return pixels.get() + static_cast<ptrdiff_t>(y) * stride; }
    const uint8_t* Row(int32_t y) const { return pixels.get() + static_cast<ptrdiff_t>(y) * stride; }

private:
    SampleBlock pixels;
    int32_t width = 0;
    int32_t height = 0;
    int32_t stride = 0;
};

}  // namespace clarivex
