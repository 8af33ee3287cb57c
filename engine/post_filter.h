// The taps of the post filter, which carries the sharpness along the rows.
#pragma once

#include <cstdint>

#include "algorithms/detail_fir.h"
#include "engine/engine_settings.h"
#include "engine/strength.h"

namespace clarivex {

/// Whether the post filter runs, and how.
struct PostFilter {
    bool on = false;
    bool chromaOdd = false;  ///< grid of the chroma interpolation: shifted for even filters
    DetailTaps taps{};       ///< of a filter that is off: those that let samples pass
};

/// The filter for rows of a scale. Off without level tables.
PostFilter DesignPostFilter(const DetailSettings& settings, TuningSet tuningSet, AxisScale horizontal,
                            const Strength& strength);

}  // namespace clarivex
