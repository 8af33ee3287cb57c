// What a tuning run is told and what it tells: plain values, free of the engine.
#pragma once

#include <cstdint>
#include <functional>

namespace clarivex {

/// How much the engine enlarges the picture that is tuned on, both axes alike. The values count half samples of the
/// target to one sample that goes into the pass.
enum class TuningScale : int32_t { unscaled = 2, threeHalves = 3, twofold = 4 };

struct TuningOptions {
    int32_t attempts = 200;
    uint32_t seed = 1;  ///< the same seed makes the same attempts
    TuningScale scale = TuningScale::threeHalves;
};

/// One attempt as it ends.
struct TuningAttempt {
    int32_t number = 1;  ///< from 1 on
    double error = 0.0;
    bool improves = false;  ///< on every error before, that of the start values included
};

using TuningObserver = std::function<void(const TuningAttempt&)>;

/// A setting of the engine before and after a run.
struct TunedSetting {
    const char* name;
    double start;
    double best;
};

}  // namespace clarivex
