#include "pipeline/caption_picture.h"

#include <utility>

#include "overlay/overlay.h"
#include "pipeline/frame_workspace.h"
#include "pipeline/noise_table.h"
#include "pipeline/planar_output.h"

namespace clarivex {
namespace {

constexpr uint8_t grey = 128;

/// A grey picture, Y, U and V. The planes' second one is V.
std::vector<uint8_t> GreyPicture(int32_t width, int32_t height, ImagePlanes& planes) {
    const size_t chromaBytes = static_cast<size_t>((width + 1) / 2) * static_cast<size_t>((height + 1) / 2);
    std::vector<uint8_t> samples(static_cast<size_t>(width) * static_cast<size_t>(height) + 2 * chromaBytes, grey);
    planes = PlanesWithoutGaps(samples.data(), width, height);
    std::swap(planes.second, planes.third);
    return samples;
}

}  // namespace

std::vector<uint8_t> DrawCaptionPicture(int32_t frame, int32_t width, int32_t height, float pixelAspect,
                                        std::unique_ptr<FontEngine> fonts, const KernelTable& kernels) {
    Overlay overlay(std::move(fonts));
    OverlayCompose(overlay, frame, width, height, pixelAspect, kernels);

    ImagePlanes source;
    ImagePlanes target;
    std::vector<uint8_t> plain = GreyPicture(width, height, source);
    std::vector<uint8_t> picture = GreyPicture(width, height, target);
    const NoiseGenerator noise;
    NoiseTable silent(noise);
    silent.Build(0.0F);
    OutputScratch scratch;
    const LightingCorrection neutral;
    PlanarOutput stage(target, picture.data() + picture.size(), source,
                       {neutral, overlay.Tiles(), silent, kernels, scratch});
    stage.TakeLuma(0, source.luma);
    stage.Finish();
    return picture;
}

}  // namespace clarivex
