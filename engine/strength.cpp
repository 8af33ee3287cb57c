#include "engine/strength.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

constexpr double largest = 8.9999;  // below the last row of the tables, so that there is a next one

/// What a picture keeps of the sharpness: a third at 160 × 120, all of it from 80,000 samples on.
double ShareOf(const FrameSize& size) {
    constexpr double smallArea = 160.0 * 120.0;
    const double area = static_cast<double>(size.width) * size.height;
    return std::clamp(std::pow(0.5 * std::sqrt(0.96 * area / smallArea), 1.6), 0.0, 1.0);
}

}  // namespace

Strength StrengthOf(float sharpness, const FrameSize& size) {
    double value = std::isnan(sharpness) ? 0.0 : sharpness;
    value = value > 0.0 ? value * ShareOf(size) : -value;
    value = std::clamp(value, 0.0, largest);
    const double level = std::floor(value);
    return {value, static_cast<int32_t>(level), value - level};
}

double MixRows(const SharpnessRows& rows, const Strength& strength, size_t column) {
    const int32_t low = rows[static_cast<size_t>(strength.level)][column];
    const int32_t high = rows[static_cast<size_t>(strength.level) + 1][column];
    return (high - low) * strength.fraction + low;
}

}  // namespace clarivex
