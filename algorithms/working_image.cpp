#include "algorithms/working_image.h"

#include <cstring>
#include <utility>

namespace clarivex {

void WorkingImage::Resize(int32_t width, int32_t height, bool hasLuma) {
    const bool sameSize = planes.luma.width == width && planes.luma.height == height;
    if (block != nullptr && sameSize && (planes.luma.data != nullptr) == hasLuma) return;
    block.reset();  // first, so that old and new block never stand side by side
    PlaneLayout layout = LayoutPlanes(width, height);
    if (!hasLuma) layout.blockBytes -= std::exchange(layout.lumaBytes, 0);
    block = MakeAlignedArray<uint8_t>(layout.blockBytes);
    blockBytes = layout.blockBytes;
    // Spare rows and columns reach the filters: they are to be the same in every run.
    std::memset(block.get(), 0, layout.blockBytes);
    planes = PlanesIn(block.get(), layout, width, height);
    if (!hasLuma) planes.luma.data = nullptr;
}

void PrepareWorkingImage(WorkingImage& image, const PictureView& source, const uint8_t* sourceEnd) {
    image.Resize(source.luma.width, source.luma.height);
    CopyPlanes(image.Planes(), source, {.targetEnd = nullptr, .sourceEnd = sourceEnd});
}

}  // namespace clarivex
