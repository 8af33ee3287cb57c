#include "engine/sleeping/cross_columns.h"

#include <algorithm>

#include "algorithms/detail_arithmetic.h"

namespace clarivex {
namespace {

constexpr int32_t roundingHigh = 12;
constexpr int32_t roundingLow = 4;

uint8_t FilterDown(uint8_t above, uint8_t sample, uint8_t below, const CrossGains& gains, int32_t rounding) {
    const int16_t measure = NarrowMeasure(above, sample, below);
    const int16_t first = Core(Wrap16((gains.extra >> 1) * measure), gains.deadZone);
    const int16_t second = Core(first, gains.deadZone);
    const int16_t detail = Wrap16(gains.base * measure + first + second + rounding);
    return SaturateSample(sample + (detail >> 4));
}

}  // namespace

void CrossColumns(const Plane& plane, const CrossGains& gains) {
    for (int32_t x = 0; x < plane.width; ++x) {
        uint8_t above = plane.data[x];
        for (int32_t y = 0; y < plane.height; ++y) {
            const uint8_t sample = plane.Row(y)[x];
            const uint8_t below = plane.Row(std::min(y + 1, plane.height - 1))[x];
            const int32_t rounding = ((x ^ y) & 1) == 0 ? roundingHigh : roundingLow;
            plane.Row(y)[x] = FilterDown(above, sample, below, gains, rounding);
            above = sample;
        }
    }
}

}  // namespace clarivex
