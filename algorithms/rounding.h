// How floating-point values become integers everywhere in the engine.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace clarivex {

/// To nearest, ties to even. Values outside 32 bits give the nearest end of ±(2³¹ − 1), so that the result can always
/// be negated; not-a-number gives 0.
inline int32_t RoundToNearest(double value) {
    constexpr double limit = std::numeric_limits<int32_t>::max();
    if (std::isnan(value)) return 0;
    return static_cast<int32_t>(std::fmax(-limit, std::fmin(limit, std::nearbyint(value))));
}

}  // namespace clarivex
