// Walks strips along their rows and down their columns and hands each sample's neighbourhood to the detail kernels.
#include "algorithms/sleeping/detail_strips.h"

#include <algorithm>
#include <array>

#include "algorithms/sleeping/detail_kernels.h"
#include "algorithms/sleeping/row_groups.h"

namespace clarivex {
namespace {

constexpr int32_t blockSize = 8;
constexpr uint8_t roundingHigh = 12;
constexpr uint8_t roundingLow = 4;

int32_t BlocksOf(int32_t width) { return (width + blockSize - 1) / blockSize; }

/// Without bias over a pair of rows, or over a pair of neighbours in both directions.
uint8_t RowRounding(RowDither dither, int32_t y, int32_t x) {
    const int32_t phase = dither == RowDither::byRow ? y : y ^ x;
    return (phase & 1) == 0 ? roundingHigh : roundingLow;
}

uint8_t ColumnRounding(int32_t y) { return (y & 1) == 0 ? roundingLow : roundingHigh; }

int16_t NarrowAt(const uint8_t* sample) { return NarrowMeasure(sample[-1], sample[0], sample[1]); }

int16_t WideAt(const uint8_t* sample) {
    return WideMeasure(sample[-3], sample[-2], sample[-1], sample[0], sample[1], sample[2], sample[3]);
}

/// Filters all but the last block of 8 of each row, in groups of `size`; filter(samples, group, column, y).
template <int32_t size, class Filter>
void FilterWideRows(const Plane& strip, Filter filter) {
    const int32_t blocks = BlocksOf(strip.width);
    const int32_t end = (blocks - 1) * blockSize;
    for (int32_t y = 0; y < strip.height; ++y) {
        uint8_t* row = strip.Row(y);
        std::fill(row + strip.width, row + blocks * blockSize, row[strip.width - 1]);
        FilterInGroups<size, wideReach, wideReach>(
            row, end / size, Repeat<wideReach>(row[1]), row + end,
            [&](const uint8_t* samples, uint8_t* group, int32_t column) { filter(samples, group, column, y); });
    }
}

/// The rows around the one being filtered, as they were before the pass. Above the strip row 0 is repeated.
class UnfilteredRows {
public:
    UnfilteredRows(const Plane& plane, int32_t columnCount) : strip(plane), columns(columnCount) {}

    /// Keeps row y before it is written over; to be called for every row from 0 on.
    void Enter(int32_t row) {
        y = row;
        std::copy_n(strip.Row(y), columns, kept[Slot(y)].begin());
    }

    /// Row y + offset, offset −3 … 3; those below are still in the strip.
    const uint8_t* At(int32_t offset) const {
        return offset > 0 ? strip.Row(y + offset) : kept[Slot(std::max(y + offset, 0))].data();
    }

    int16_t Narrow(int32_t x) const { return NarrowMeasure(At(-1)[x], At(0)[x], At(1)[x]); }
    int16_t Wide(int32_t x) const {
        return WideMeasure(At(-3)[x], At(-2)[x], At(-1)[x], At(0)[x], At(1)[x], At(2)[x], At(3)[x]);
    }

private:
    static constexpr int32_t slots = wideReach + 1;
    static size_t Slot(int32_t row) { return static_cast<size_t>(row % slots); }

    const Plane& strip;
    int32_t columns;
    int32_t y = 0;
    std::array<std::array<uint8_t, stripSize>, slots> kept{};
};

}  // namespace

void NarrowDetailRows(const Plane& strip, const SharpenCoefficients& coefficients) {
    const NarrowGains gains = MakeNarrowGains(coefficients);
    const int32_t blocks = BlocksOf(strip.width);
    const int32_t end = blocks * blockSize;
    for (int32_t y = 0; y < strip.height; ++y) {
        uint8_t* row = strip.Row(y);
        FilterInGroups<blockSize, 1, 1>(row, blocks, {0}, row + end,
                                        [&](const uint8_t* samples, uint8_t* group, int32_t) {
                                            for (int32_t i = 0; i < blockSize; ++i)
                                                group[i] = NarrowDetail(samples[i], NarrowAt(samples + i), gains,
                                                                        RowRounding(RowDither::checkerboard, y, i));
                                        });
    }
}

void GatedDetailRows(const Plane& strip, const SharpenCoefficients& coefficients, RowDither dither) {
    const GatedGains gains = MakeGatedRowGains(coefficients);
    FilterWideRows<gateGroup>(strip, [&](const uint8_t* samples, uint8_t* group, int32_t column, int32_t y) {
        int16_t narrow[gateGroup];
        int16_t wide[gateGroup];
        uint8_t rounding[gateGroup];
        for (int32_t i = 0; i < gateGroup; ++i) {
            narrow[i] = NarrowAt(samples + i);
            wide[i] = WideAt(samples + i);
            rounding[i] = RowRounding(dither, y, column + i);
        }
        GatedDetail(samples, narrow, wide, gains, rounding, group);
    });
}

void KneeDetailRows(const Plane& strip, const SharpenCoefficients& coefficients, RowDither dither) {
    const KneeGains gains = MakeKneeGains(coefficients);
    FilterWideRows<blockSize>(strip, [&](const uint8_t* samples, uint8_t* group, int32_t column, int32_t y) {
        for (int32_t i = 0; i < blockSize; ++i)
            group[i] = KneeDetail(samples[i], NarrowAt(samples + i), WideAt(samples + i), gains,
                                  RowRounding(dither, y, column + i));
    });
}

void NarrowDetailColumns(const Plane& strip, const SharpenCoefficients& coefficients) {
    if (strip.height < 2) return;
    const NarrowGains gains = MakeNarrowGains(coefficients);
    std::copy_n(strip.Row(strip.height - 1), strip.width, strip.Row(strip.height));
    UnfilteredRows rows(strip, strip.width);
    for (int32_t y = 0; y < (strip.height & ~1); ++y) {
        rows.Enter(y);
        for (int32_t x = 0; x < strip.width; ++x)
            strip.Row(y)[x] = NarrowDetail(rows.At(0)[x], rows.Narrow(x), gains, ColumnRounding(y));
    }
}

void GatedDetailColumns(const Plane& strip, const SharpenCoefficients& coefficients) {
    const GatedGains gains = MakeGatedColumnGains(coefficients);
    const int32_t columns = (strip.width + gateGroup - 1) / gateGroup * gateGroup;
    const int32_t rowCount = ((strip.height + 1) & ~1) - 4;
    UnfilteredRows rows(strip, columns);
    for (int32_t y = 0; y < rowCount; ++y) {
        rows.Enter(y);
        const std::array<uint8_t, gateGroup> rounding = Repeat<gateGroup>(ColumnRounding(y));
        for (int32_t x = 0; x < columns; x += gateGroup) {
            int16_t narrow[gateGroup];
            int16_t wide[gateGroup];
            for (int32_t i = 0; i < gateGroup; ++i) {
                narrow[i] = rows.Narrow(x + i);
                wide[i] = rows.Wide(x + i);
            }
            GatedDetail(rows.At(0) + x, narrow, wide, gains, rounding.data(), strip.Row(y) + x);
        }
    }
}

void KneeDetailColumns(const Plane& strip, const SharpenCoefficients& c) {
    constexpr int32_t maxNarrowKnee = 0x3FFF;
    const int32_t narrowKnee = std::min(c.narrowKnee, maxNarrowKnee);
    UnfilteredRows rows(strip, strip.width);
    for (int32_t y = 0; y < strip.height - wideReach; ++y) {
        rows.Enter(y);
        if (y < wideReach) continue;
        const int32_t rounding = (y & 1) == 0 ? 64 : 192;
        for (int32_t x = 0; x < strip.width; ++x) {
            const int64_t narrow = rows.Narrow(x);
            const int64_t wide = rows.Wide(x);
            const int64_t narrowDetail = c.narrowBase * narrow + WideCore(c.narrowExtra * narrow, narrowKnee);
            const int64_t wideDetail = c.wideBase * wide + WideCore(c.wideExtra * wide, c.wideKnee);
            strip.Row(y)[x] =
                SaturateSample((256 * int64_t{rows.At(0)[x]} + 16 * narrowDetail + wideDetail + rounding) >> 8);
        }
    }
}

}  // namespace clarivex
