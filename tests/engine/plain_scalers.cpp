#include "tests/engine/plain_scalers.h"

#include <algorithm>
#include <vector>

#include "algorithms/sleeping/detail_strips.h"
#include "engine/sleeping/cross_columns.h"
#include "tests/simd/plain_kernels.h"

namespace clarivex {
namespace {

uint8_t Limited(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

/// Sample x of a row as it lies in memory; behind the end of memory the row's last sample.
int32_t SampleAt(const SourcePlane& source, int32_t x, int32_t y) {
    const uint8_t* row = source.plane.Row(y);
    return row + x < source.end ? row[x] : row[source.plane.width - 1];
}

const TapSet& PhaseOf(const ThreeHalvesTaps& taps, int32_t phase) {
    return phase == 0 ? taps.a : phase == 1 ? taps.b : taps.c;
}

void EnlargeRows(const Plane& target, const SourcePlane& source, const ThreeHalvesTaps& taps) {
    const int32_t read = (source.plane.width + 7) / 8 * 8;
    for (int32_t y = 0; y < source.plane.height; ++y)
        for (int32_t out = 0; out < std::min(read / 2 * 3, target.stride); ++out) {
            int32_t sum = 8160;
            for (int32_t k = 0; k < 8; ++k) {
                const int32_t position = 2 * (out / 3) + out % 3 + k - 4;
                if (position > read) continue;  // mid-grey
                const int32_t sample = SampleAt(source, std::clamp(position, 0, read - 1), y);
                sum += (PhaseOf(taps, out % 3)[static_cast<size_t>(k)] * PlainCentred(sample)) >> 16;
            }
            target.Row(y)[out] = Limited(static_cast<int16_t>(sum) >> 6);
        }
}

/// A row with its ends repeated beside it, as the kernels that double it read it; one sample more counts.
class RepeatedRow {
public:
    RepeatedRow(const uint8_t* row, int32_t width) : samples(static_cast<size_t>(width + 9), row[width - 1]) {
        std::fill_n(samples.begin(), 4, row[0]);
        std::copy_n(row, width, samples.begin() + 4);
    }
    const uint8_t* Samples() const { return samples.data() + 4; }

private:
    std::vector<uint8_t> samples;
};

void DoubleRows(const Plane& target, const PlaneView& source, const TwofoldTaps& taps) {
    TapSet firstTaps = taps.a;
    firstTaps[2] = firstTaps[0];
    for (int32_t y = 0; y < source.height; ++y) {
        const RepeatedRow row(source.Row(y), source.width);
        std::vector<uint8_t> first(2), out(static_cast<size_t>(2 * source.width + 2));
        plainKernels.doubleRow(row.Samples(), firstTaps.data(), first.data(), 1);
        plainKernels.doubleRow(row.Samples(), taps.a.data(), out.data(), source.width + 1);
        out[0] = first[0];
        std::copy_n(out.begin(), std::min((2 * source.width + 3) / 4 * 4, target.stride), target.Row(y));
    }
}

void RankRows(const Plane& plane, RankStage stage) {
    for (int32_t y = 0; y < plane.height; ++y)
        for (int32_t x = 0; x < plane.width - 1; ++x) {
            const auto [smaller, larger] = std::minmax({plane.Row(y)[x], plane.Row(y)[x + 1]});
            if (stage != RankStage::none) plane.Row(y)[x] = stage == RankStage::smaller ? smaller : larger;
        }
}

/// A plane of wide words.
struct WidePlane {
    int32_t width, height;
    std::vector<int16_t> words;

    WidePlane(int32_t columns, int32_t rows)
        : width(columns), height(rows), words(static_cast<size_t>(columns) * static_cast<size_t>(rows)) {}
    int16_t* Row(int32_t y) { return words.data() + ptrdiff_t{y} * width; }
};

WidePlane DoubledRows(const PlaneView& source, const TwofoldTaps& taps) {
    WidePlane wide(2 * source.width, source.height);
    for (int32_t y = 0; y < source.height; ++y) {
        const RepeatedRow row(source.Row(y), source.width);
        plainKernels.doubleRowWide(row.Samples(), taps.a.data(), wide.Row(y), source.width);
    }
    return wide;
}

WidePlane DoubledColumns(WidePlane source, const TwofoldTaps& taps) {
    WidePlane wide(source.width, 2 * source.height);
    for (int32_t y = 0; y < wide.height; ++y) {
        const int16_t* rows[8];
        for (int32_t k = 0; k < 8; ++k) rows[k] = source.Row(std::clamp((y + 1) / 2 + k - 4, 0, source.height - 1));
        plainKernels.doubleColumnsWide(rows, (y % 2 == 0 ? taps.a : taps.b).data(), wide.Row(y), wide.width);
    }
    return wide;
}

/// Replaces what the stages cover along an axis by what kernel(words, out) makes of the words at these places along it.
template <size_t count, class Kernel>
void FilterWide(WidePlane& plane, bool down, const int32_t (&places)[count], Kernel kernel) {
    WidePlane before = plane;
    const int32_t end = 8 + 8 * std::max(((down ? plane.height : plane.width) - 16) >> 3, 0);
    for (int32_t y = 0; y < plane.height; ++y)
        for (int32_t x = 0; x < plane.width; ++x) {
            if ((down ? y : x) < 8 || (down ? y : x) >= end) continue;
            const int16_t* words[count];
            for (size_t i = 0; i < count; ++i)
                words[i] = before.Row(y) + x + ptrdiff_t{places[i]} * (down ? plane.width : 1);
            kernel(words, plane.Row(y) + x);
        }
}

void RunPostStages(WidePlane& plane, bool down, const WideStages& stages, const DetailTaps& taps) {
    if (stages.limitEdges)
        FilterWide(plane, down, {0, -1, 1, -3, 3}, [&](const int16_t* const* words, int16_t* out) {
            plainKernels.limitEdgesWide(words, out, 1, stages.edgeLimits);
        });
    if (stages.postFilterOn)
        FilterWide(
            plane, down, {-8, -7, -6, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7},
            [&](const int16_t* const* words, int16_t* out) { plainKernels.firWide(words, taps.data(), out, 1); });
}

/// Filters each row through a kernel that does not work in place.
template <class Filter>
void FilterRows(const Plane& plane, Filter filter) {
    for (int32_t y = 0; y < plane.height; ++y) {
        const std::vector<uint8_t> before(plane.Row(y), plane.Row(y) + plane.width);
        filter(before.data(), plane.Row(y));
    }
}

void RunPostFilter(const Plane& plane, const RowStages& stages) {
    const DetailTaps& taps = stages.postTaps;
    const bool even = std::equal(taps.begin(), taps.begin() + 8, taps.rbegin());
    const int32_t group = even ? 8 : 4;
    const int32_t end = group + std::max(plane.width - 2 * group, 0) / group * group;
    const int32_t rounding = std::count(taps.begin(), taps.begin() + 4, 0) == 4 ? 6 : 7;
    for (int32_t pass = 0;
         pass < (even && stages.sleeping.evenFilterPasses >= 3 ? stages.sleeping.evenFilterPasses : 1); ++pass)
        FilterRows(plane, [&](const uint8_t* in, uint8_t* out) {
            if (even)
                plainKernels.firEven(in, out, {plane.width, group, end}, taps.data(), rounding);
            else
                plainKernels.fir7(in, out, {plane.width, group, end}, &taps[5], nullptr);
        });
}

void RunEdgeStage(const Plane& plane, const RowStages& stages) {
    if (stages.edgeStage == EdgeStage::simple) LimitEdgesSimple(plane, stages.sleeping.simpleLimits);
    if (stages.edgeStage == EdgeStage::full)
        FilterRows(plane, [&](const uint8_t* in, uint8_t* out) {
            plainKernels.limitEdges(in, out, plane.width, stages.edgeLimits);
        });
}

void RunCrossStage(const Plane& plane, const CrossGains& gains) {
    std::vector<uint8_t> line(static_cast<size_t>(plane.stride));
    CrossStage cross(gains, line.data());
    for (int32_t y = 0; y < plane.height; y += 16) cross.Run(plane, y);
}

}  // namespace

void PlainScaleRows(const Plane& target, const SourcePlane& source, const RowStages& stages) {
    if (stages.sleeping.preStage.gated)
        GatedDetailRows(source.writable, stages.sleeping.preStage.gains, RowDither::byRow);
    if (stages.sleeping.preStage.kernel == PreKernel::narrow)
        NarrowDetailRows(source.writable, stages.sleeping.preStage.gains);
    if (stages.sleeping.preStage.kernel == PreKernel::knee)
        KneeDetailRows(source.writable, stages.sleeping.preStage.gains, RowDither::byRow);
    if (stages.scale == AxisScale::twofold)
        DoubleRows(target, source.plane, stages.sleeping.twofoldTaps);
    else
        EnlargeRows(target, source, stages.taps);
    RunEdgeStage(target, stages);
    if (stages.sleeping.detailOn) KneeDetailRows(target, stages.sleeping.detailGains, RowDither::checkerboard);
    if (stages.postFilterOn) RunPostFilter(target, stages);
    if (stages.sleeping.boosterOn) BoostSmallSignals(target, stages.sleeping.booster);
    if (stages.crossOn) RunCrossStage(target, stages.cross);
    RankRows(target, stages.sleeping.rankStage);
}

void PlainScaleColumns(const Plane& target, const SourcePlane& source, const ColumnStages& stages) {
    const int32_t width = source.plane.width, height = source.plane.height;
    if (height < 4) return;
    for (int32_t x = 0; x < width; x += 16) {
        const Plane strip{source.writable.data + x, 16, height, source.writable.stride};
        if (stages.sleeping.preStage.gated) GatedDetailColumns(strip, stages.sleeping.preStage.gains);
        if (stages.sleeping.preStage.kernel == PreKernel::narrow)
            NarrowDetailColumns(strip, stages.sleeping.preStage.gains);
        if (stages.sleeping.preStage.kernel == PreKernel::knee)
            KneeDetailColumns(strip, stages.sleeping.preStage.gains);
    }
    for (int32_t out = 0; out < 3 * height / 2; ++out)
        for (int32_t x = 0; x < (width + 7) / 8 * 8; ++x) {
            int32_t sum = 0;
            for (int32_t k = 0; k < 8; ++k) {
                const int32_t row = std::clamp(2 * (out / 3) + out % 3 + k - 4, 0, height - 1);
                const int32_t word = 257 * SampleAt(source, x, row) - 32768;
                const int32_t product = (PhaseOf(stages.taps, out % 3)[static_cast<size_t>(k)] * word) >> 16;
                sum = std::clamp(sum + product, -32768, 32767);
            }
            target.Row(out)[x] = Limited(std::clamp(sum + 0x2000, -32768, 32767) >> 6);
        }
    if (stages.sleeping.crossOn)
        CrossColumns({target.data, width, target.height, target.stride}, stages.sleeping.cross);
}

void PlainScaleBothTwice(const Plane& target, const PlaneView& source, const WideStages& stages) {
    WidePlane both = DoubledColumns(DoubledRows(source, stages.taps), stages.taps);
    RunPostStages(both, true, stages, stages.columnTaps);
    RunPostStages(both, false, stages, stages.rowTaps);
    for (int32_t y = 0; y < both.height; ++y) plainKernels.narrowRow(both.Row(y), target.Row(y), both.width);
}

}  // namespace clarivex
