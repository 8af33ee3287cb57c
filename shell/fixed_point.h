// Numbers as the settings store keeps them: unsigned, with 16 bits before and 16 behind the point.
#pragma once

#include <cmath>
#include <cstdint>

namespace clarivex {

constexpr double fixedPointOne = 65536.0;

/// Rounded to nearest; what does not fit becomes the nearest number that does, and what is no number becomes 0.
inline uint32_t ToFixedPoint(double value) {
    constexpr double largest = 4294967295.0;
    const double scaled = std::round(value * fixedPointOne);
    if (!(scaled > 0.0)) return 0;
    return scaled < largest ? static_cast<uint32_t>(scaled) : UINT32_MAX;
}

constexpr double FromFixedPoint(uint32_t value) { return value / fixedPointOne; }

}  // namespace clarivex
