#include "shell/tuning.h"

#include <algorithm>

#include "engine/tuning/tuning.h"
#include "pipeline/frame_pipeline.h"
#include "shell/plugin_settings.h"
#include "shell/process_objects.h"

namespace clarivex {
namespace {

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
    EngineSettings settings;
    settings.frame.sharpness = StrengthOfSlider(PluginSettings().Sharpness());
    const Tuning tuning = TuneEngine(settings, PlanesWithoutGaps(target.samples.data(), target.width, target.height),
                                     options, observer, ProcessKernels());
    return {tuning.startError, tuning.bestError, tuning.settings,
            CutOut(tuning.reduced.Planes(), target.width, target.height),
            CutOut(tuning.enhanced.Planes(), target.width, target.height)};
}

}  // namespace clarivex
