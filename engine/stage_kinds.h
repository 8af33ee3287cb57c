// The forms that stages of the scalers have.
#pragma once

#include <cstdint>

namespace clarivex {

/// Limiter of enlarged rows.
enum class EdgeStage : int32_t { none = 0, simple = 1, full = 2 };

/// Replaces each sample by the smaller or the larger of itself and its right neighbour.
enum class RankStage : int32_t { smaller = -1, larger = 1, none = 2 };

/// A post filter around one sample, or between two of them, from a windowed sinc or from two equal taps.
enum class FilterShape : int32_t { odd = 0, evenSinc = 1, evenPair = 2 };

/// Detail kernels in front of a scaler, behind the gated one where that runs.
enum class PreKernel : int32_t { none = 0, narrow = 1, knee = 2 };

}  // namespace clarivex
