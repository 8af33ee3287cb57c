#include "overlay/image_layer.h"

#include <utility>

#include "overlay/compositor.h"
#include "simd/kernel_table.h"

namespace clarivex {

void ImageLayer::SetSize(int32_t newWidth, int32_t newHeight, float newAspect) {
    width = newWidth;
    height = newHeight;
    aspect = newAspect;
}

bool ImageLayer::Update(const ComposeFrame& frame) {
    Composition composition = Compose(images, image, width, height, aspect, frame, {.releaseWhenEmpty = true});
    content = std::move(composition.content);
    changed = std::move(composition.damage);
    RegionSnapX8(content);
    RegionSnapX8(changed);
    return true;
}

void ImageLayer::Paint(OverlayTiles& tiles, const Region& region, const ComposeFrame& frame) {
    constexpr int32_t group = OverlayTiles::groupPixels;
    if (image.AllocatedWidth() < width || image.AllocatedHeight() < height) return;
    for (const Rectangle rectangle : RegionRects(region)) {
        const int32_t left = rectangle.left / group * group;
        const int32_t groups = (rectangle.right - left + group - 1) / group;
        for (int32_t y = rectangle.top; y < rectangle.bottom; ++y) {
            const bool oddRow = (y - rectangle.top) % 2 != 0;
            frame.kernels.packTileRow(image.Pixel(left, y), tiles.Group(left, y), groups, oddRow);
        }
    }
}

}  // namespace clarivex
