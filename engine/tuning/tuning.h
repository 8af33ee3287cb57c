// The tuning harness, a tool for development: it looks for better settings of an engine by random steps, judged by how
// close the pass brings a reduced picture to the picture it was reduced from. No frame of a video goes through here.
#pragma once

#include <vector>

#include "algorithms/working_image.h"
#include "engine/engine_settings.h"
#include "engine/tuning/tuning_terms.h"
#include "runtime/random.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// How far a setting moves: mostly −4 … 4, once in ten times −100 … 100.
int32_t RandomStep(Random15& random);

/// Which of the twenty settings on the harness's list moves: 0 … 19.
int32_t RandomChoice(Random15& random);

/// Sizes of targets that a run takes, in luma samples.
struct TuningLimits {
    int32_t leastWidth;
    int32_t leastHeight;
    int32_t mostWidth;
    int32_t mostHeight;
};

/// A picture needs samples between its margins, and the engine enlarges no picture beyond a size.
TuningLimits TuningLimitsOf(TuningScale scale);

/// What a run has found.
struct Tuning {
    double startError = 0.0;  ///< with the settings that the engine came with
    double bestError = 0.0;
    /// All that may move. A setting that has no effect at the scale or beside the others moves along with one that has.
    std::vector<TunedSetting> settings;
    EngineSettings best;
    WorkingImage reduced;   ///< what went into the pass
    WorkingImage enhanced;  ///< what came out with the best settings; `reduced` where nothing was written
};

/// Runs options.attempts passes with settings that lie a few random steps from the best ones so far, and keeps what
/// improves. The error is the mean of the squared differences of luma, divided by 255: 0 … 255. Margins of 16 columns
/// and 8 rows do not count.
///
/// settings  where the search starts; its modes become those of the scale, and lighting is off. Sharpness at least 0.
/// target    4:2:0 planes as the pass should give them; odd sizes are rounded up by a repeated column or row
/// observer  called at the end of every attempt; may be empty
/// throws    std::invalid_argument for a target outside TuningLimitsOf(options.scale)
Tuning TuneEngine(const EngineSettings& settings, const PictureView& target, const TuningOptions& options,
                  const TuningObserver& observer, const KernelTable& kernels);

}  // namespace clarivex
