#include "engine/cross_stage.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "algorithms/detail_arithmetic.h"
#include "algorithms/rounding.h"

namespace clarivex {
namespace {

constexpr int32_t roundingHigh = 12;
constexpr int32_t roundingLow = 4;

uint8_t FilterAcross(uint8_t above, uint8_t sample, uint8_t below, const CrossGains& gains, int32_t rounding) {
    const NarrowGains narrow{gains.base, gains.extra, gains.deadZone};
    return NarrowDetail(sample, NarrowMeasure(above, sample, below), narrow, rounding);
}

}  // namespace

CrossGains DeriveCrossGains(const SharpenParams& params) {
    constexpr double unit = 5.0;
    constexpr int32_t maxDeadZone = 0x3FFF;
    const double baseLog2 = params.baseGainLog2;
    const double base = unit * (std::exp2(baseLog2) - 1.0);
    const double aboveKnee = unit * (std::exp2(baseLog2 + params.extraGainLog2) - 1.0);
    const int32_t extra = RoundToNearest(aboveKnee - base);
    const int32_t deadZone = std::abs(RoundToNearest(static_cast<double>(params.knee) * extra));
    return {Wrap16(RoundToNearest(base)), Wrap16(extra), Wrap16(std::min(deadZone, maxDeadZone))};
}

void CrossStage::Run(const Plane& plane, int32_t y) {
    const bool last = y + stripSize >= plane.height;
    const int32_t rows = std::min(stripSize, plane.height - y);
    const int32_t first = std::max(y - 1, 0);
    const int32_t end = y + rows - (last ? 0 : 1);
    const int32_t count = end - first;
    if (count < 2) return;
    const int32_t columns = std::min((plane.width + 7) & ~7, plane.stride);
    if (y == 0) std::copy_n(plane.Row(0), columns, line);
    for (int32_t i = 0; i < (count & ~1); ++i) {
        const int32_t below = std::min(first + i + 1, plane.height - 1);
        FilterRow(plane.Row(first + i), plane.Row(below), columns, (i & 1) == 0 ? roundingLow : roundingHigh);
    }
    if ((count & 1) != 0) std::copy_n(plane.Row(end - 1), columns, line);
}

// Leaves the row as it was before in `line`, where the next row finds it as the one above.
void CrossStage::FilterRow(uint8_t* row, const uint8_t* below, int32_t columns, int32_t rounding) {
    for (int32_t x = 0; x < columns; ++x) {
        const uint8_t sample = row[x];
        row[x] = FilterAcross(line[x], sample, below[x], gains, rounding);
        line[x] = sample;
    }
}

}  // namespace clarivex
