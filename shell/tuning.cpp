#include "shell/tuning.h"

#include <algorithm>

#include "engine/tuning.h"
#include "pipeline/frame_driver.h"
#include "shell/plugin_settings.h"
#include "shell/process_objects.h"

namespace clarivex {
namespace {

ImagePlanes PlanesOf(TuningPicture& picture) {
    const int32_t chromaWidth = (picture.width + 1) / 2;
    const int32_t chromaHeight = (picture.height + 1) / 2;
    uint8_t* luma = picture.samples.data();
    uint8_t* second = luma + static_cast<ptrdiff_t>(picture.width) * picture.height;
    uint8_t* third = second + static_cast<ptrdiff_t>(chromaWidth) * chromaHeight;
    return {.luma = {luma, picture.width, picture.height, picture.width},
            .second = {second, chromaWidth, chromaHeight, chromaWidth},
            .third = {third, chromaWidth, chromaHeight, chromaWidth}};
}

void AppendPart(const Plane& plane, int32_t width, int32_t height, std::vector<uint8_t>& samples) {
    for (int32_t y = 0; y < height; ++y) samples.insert(samples.end(), plane.Row(y), plane.Row(y) + width);
}

/// The upper left part of an image, at most width × height.
TuningPicture CutOut(const ImagePlanes& image, int32_t width, int32_t height) {
    TuningPicture picture{std::min(image.luma.width, width), std::min(image.luma.height, height), {}};
    AppendPart(image.luma, picture.width, picture.height, picture.samples);
    for (const Plane& chroma : {image.second, image.third})
        AppendPart(chroma, (picture.width + 1) / 2, (picture.height + 1) / 2, picture.samples);
    return picture;
}

}  // namespace

PictureTuning TunePicture(TuningPicture target, const TuningOptions& options, const TuningObserver& observer) {
    EnhancementEngine engine;
    engine.sharpness = StrengthOfSlider(PluginSettings().Sharpness());
    const Tuning tuning = TuneEngine(engine, PlanesOf(target), options, observer, ProcessKernels());
    return {tuning.startError, tuning.bestError, tuning.settings,
            CutOut(tuning.reduced.Planes(), target.width, target.height),
            CutOut(tuning.enhanced.Planes(), target.width, target.height)};
}

}  // namespace clarivex
