// The target that texts are painted into: colour and transparency, four bytes a pixel.
#pragma once

#include <cstdint>

#include "overlay/rectangle.h"
#include "runtime/memory.h"

namespace clarivex {

/// Pixels of transparency T, Y, U and V, premultiplied; T is 255 where nothing is. Rows are a multiple of 32 bytes long,
/// whole groups of 8 pixels. Starts with no pixels.
class YuvaImage {
public:
    static constexpr int32_t pixelBytes = 4;
    static constexpr uint8_t emptyPixel[pixelBytes] = {255, 16, 128, 128};

    /// Gives the image another size, at least 0 on each side; the pixels are then not set. The same size does nothing.
    void Reallocate(int32_t newWidth, int32_t newHeight);

    /// Makes the pixels of the rectangle empty, as far as it lies inside the image; one that reaches the last column also
    /// clears what stands behind it in the rows.
    void ClearRectangle(const Rectangle& rectangle);

    int32_t AllocatedWidth() const { return width; }
    int32_t AllocatedHeight() const { return height; }

    /// Bytes from one row to the next.
    int32_t Stride() const { return stride; }

    /// The pixel at (x, y), inside the image.
    uint8_t* Pixel(int32_t x, int32_t y) {
        return pixels.get() + static_cast<ptrdiff_t>(y) * stride + static_cast<ptrdiff_t>(x) * pixelBytes;
    }
    const uint8_t* Pixel(int32_t x, int32_t y) const { return const_cast<YuvaImage*>(this)->Pixel(x, y); }

private:
    SampleBlock pixels;
    int32_t width = 0;
    int32_t height = 0;
    int32_t stride = 0;
};

}  // namespace clarivex
