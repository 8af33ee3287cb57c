// The tuning harness of the engine, for programs with the plug-in linked in.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/tuning/tuning_terms.h"

namespace clarivex {

/// A 4:2:0 picture without gaps: Y, U, V. Chroma is half the size in both directions, rounded up.
struct TuningPicture {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint8_t> samples;
};

/// What a run has found. The error is the mean of the squared differences of luma, divided by 255.
struct PictureTuning {
    double startError = 0.0;
    double bestError = 0.0;
    std::vector<TunedSetting> settings;
    TuningPicture reduced;   ///< what went into the engine: the target reduced by the scale
    TuningPicture enhanced;  ///< what came out with the best settings, cut to the target's size
};

/// Looks for settings with which a new engine brings the reduced target closest to the target, starting from those of a
/// player that is left as it comes. Runs on the instruction set in use; all give the same result.
///
/// target    samples as many as its size needs
/// observer  called at the end of every attempt
/// throws    std::invalid_argument for a picture that is too small to be compared or too large to be enlarged by the scale
PictureTuning TunePicture(TuningPicture target, const TuningOptions& options, const TuningObserver& observer);

}  // namespace clarivex
