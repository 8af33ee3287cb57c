#include "algorithms/working_image.h"

#include <cstring>

namespace clarivex {

void WorkingImage::Resize(int32_t width, int32_t height) {
    if (block != nullptr && planes.luma.width == width && planes.luma.height == height) return;
    block.reset();  // first, so that old and new block never stand side by side
    const PlaneLayout layout = LayoutPlanes(width, height);
    block = MakeAlignedArray<uint8_t>(layout.blockBytes);
    // Spare rows and columns reach the filters: they are to be the same in every run.
    std::memset(block.get(), 0, layout.blockBytes);
    planes = PlanesIn(block.get(), layout, width, height);
}

void PrepareWorkingImage(WorkingImage& image, const PictureView& source, const uint8_t* sourceEnd) {
    image.Resize(source.luma.width, source.luma.height);
    CopyPlanes(image.Planes(), source, {.targetEnd = nullptr, .sourceEnd = sourceEnd});
}

}  // namespace clarivex
