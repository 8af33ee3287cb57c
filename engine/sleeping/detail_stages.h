// Stages of the scaler's strips that the start-up values leave off: the simple edge limiter and the small-signal
// booster. The detail kernels themselves are those of algorithms/sleeping/detail_strips.h. All work in place along the rows of a
// strip of up to 16 rows and read unfiltered neighbours.
#pragma once

#include <cstdint>

#include "runtime/planes.h"

namespace clarivex {

/// Values of the simple edge limiter.
struct SimpleLimits {
    int16_t gain = 29;  ///< on the second difference, in 32nds for each of two dead zones in a row
    int16_t deadZone = 29;
    int16_t neighbourWeight = 64;  ///< how far the limits reach towards the neighbours, in 64ths
};

/// Sharpens and limits to the range that a sample and its two neighbours span.
///
/// edges  beyond both ends of a row its last sample is repeated. Groups of four are filtered whole: of a width that is
///        no multiple of 4, spare columns up to the next multiple are written too.
void LimitEdgesSimple(const Plane& strip, const SimpleLimits& limits);

/// Values of the small-signal booster.
struct BoosterGains {
    int16_t gain = 0;
    int16_t deadZone = 0;  ///< signals up to this size are amplified in full, larger ones by this much
};

BoosterGains DeriveBoosterGains(int32_t detailBoostA, int32_t detailBoostB);

/// Amplifies small detail, smoothed over three samples, in groups of 8 from column 0, (width − 8) >> 3 of them; the
/// rest stays as it is, and the first three samples too.
void BoostSmallSignals(const Plane& strip, const BoosterGains& gains);

}  // namespace clarivex
