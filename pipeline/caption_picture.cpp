#include "pipeline/caption_picture.h"

#include "overlay/overlay.h"
#include "pipeline/frame_workspace.h"
#include "pipeline/noise_table.h"
#include "pipeline/planar_output.h"

namespace clarivex {
namespace {

constexpr uint8_t grey = 128;

/// Views of the planes that stand one behind the other in `samples`. The second is V, which comes last.
ImagePlanes PlanesOf(std::vector<uint8_t>& samples, int32_t width, int32_t height) {
    const int32_t chromaWidth = (width + 1) / 2;
    const int32_t chromaHeight = (height + 1) / 2;
    const auto lumaBytes = static_cast<size_t>(width) * static_cast<size_t>(height);
    const auto chromaBytes = static_cast<size_t>(chromaWidth) * static_cast<size_t>(chromaHeight);
    samples.resize(lumaBytes + 2 * chromaBytes, grey);
    const auto chromaAt = [&](size_t offset) {
        return Plane{samples.data() + offset, chromaWidth, chromaHeight, chromaWidth};
    };
    return {{samples.data(), width, height, width}, chromaAt(lumaBytes + chromaBytes), chromaAt(lumaBytes), nullptr};
}

}  // namespace

std::vector<uint8_t> DrawCaptionPicture(int32_t frame, int32_t width, int32_t height, float pixelAspect,
                                        std::unique_ptr<FontEngine> fonts, const KernelTable& kernels) {
    Overlay overlay(std::move(fonts));
    for (int32_t i = 0; i < frame; ++i) OverlayCompose(overlay, width, height, pixelAspect, kernels);

    std::vector<uint8_t> plain;
    std::vector<uint8_t> picture;
    const ImagePlanes source = PlanesOf(plain, width, height);
    const ImagePlanes target = PlanesOf(picture, width, height);
    const NoiseTable silent;
    OutputScratch scratch;
    PlanarOutputStage(target, picture.data() + picture.size(), source,
                      {LightingCorrection{}, overlay.Tiles(), silent, kernels, scratch});
    return picture;
}

}  // namespace clarivex
