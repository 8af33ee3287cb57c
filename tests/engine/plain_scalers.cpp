#include "tests/engine/plain_scalers.h"

#include <algorithm>
#include <vector>

#include "tests/simd/plain_kernels.h"

namespace clarivex {
namespace {

uint8_t Limited(int32_t value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

/// Sample x of a row as it lies in memory; behind the end of memory the row's last sample.
int32_t SampleAt(const Plane& plane, const uint8_t* end, int32_t x, int32_t y) {
    const uint8_t* sample = plane.Row(y) + x;
    return sample < end ? *sample : plane.Row(y)[plane.width - 1];
}

const TapSet& PhaseOf(const ThreeHalvesTaps& taps, int32_t phase) {
    return phase == 0 ? taps.a : phase == 1 ? taps.b : taps.c;
}

/// The signed byte s + 1 from the middle on, repeated into both halves of a word.
int32_t Expanded(int32_t sample) {
    const int32_t s = sample < 128 ? sample - 128 : std::min(sample - 127, 127);
    return 256 * s + (s & 255);
}

void EnlargeRows(const Plane& target, const Plane& source, const uint8_t* end, const ThreeHalvesTaps& taps) {
    const int32_t read = (source.width + 7) / 8 * 8;
    for (int32_t y = 0; y < source.height; ++y)
        for (int32_t out = 0; out < std::min(read / 2 * 3, target.stride); ++out) {
            int32_t sum = 8160;
            for (int32_t k = 0; k < 8; ++k) {
                const int32_t position = 2 * (out / 3) + out % 3 + k - 4;
                if (position > read) continue;  // mid-grey
                const int32_t sample = SampleAt(source, end, std::clamp(position, 0, read - 1), y);
                sum += (PhaseOf(taps, out % 3)[static_cast<size_t>(k)] * Expanded(sample)) >> 16;
            }
            target.Row(y)[out] = Limited(static_cast<int16_t>(sum) >> 6);
        }
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
    const DetailFirForm form = ChooseDetailFirForm(stages.postTaps);
    if (form != DetailFirForm::general) {
        DetailFirSymmetric(plane, stages.postTaps, form, stages.evenFilterPasses);
        return;
    }
    const int32_t end = 4 + 4 * std::max((plane.width - 8) >> 2, 0);
    FilterRows(plane, [&](const uint8_t* in, uint8_t* out) {
        plainKernels.fir7(in, out, plane.width, 4, end, &stages.postTaps[5], nullptr);
    });
}

void RunEdgeStage(const Plane& plane, const RowStages& stages) {
    if (stages.edgeStage == EdgeStage::simple) LimitEdgesSimple(plane, stages.simpleLimits);
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

void PlainScaleRows(const Plane& target, const Plane& source, const uint8_t* sourceEnd, const RowStages& stages) {
    if (stages.preStage.gated) GatedDetailRows(source, stages.preStage.gains, RowDither::byRow);
    if (stages.preStage.mode == 1) NarrowDetailRows(source, stages.preStage.gains, true);
    if (stages.preStage.mode == 2) KneeDetailRows(source, stages.preStage.gains, RowDither::byRow);
    EnlargeRows(target, source, sourceEnd, stages.taps);
    RunEdgeStage(target, stages);
    if (stages.detailOn) KneeDetailRows(target, stages.detailGains, RowDither::checkerboard);
    if (stages.postFilterOn) RunPostFilter(target, stages);
    if (stages.boosterOn) BoostSmallSignals(target, stages.booster);
    if (stages.crossOn) RunCrossStage(target, stages.cross);
}

void PlainScaleColumns(const Plane& target, const Plane& source, const uint8_t* sourceEnd, const ColumnStages& stages) {
    if (source.height < 4) return;
    for (int32_t x = 0; x < source.width; x += 16) {
        const Plane strip{source.data + x, 16, source.height, source.stride};
        if (stages.preStage.gated) GatedDetailColumns(strip, stages.preStage.gains);
        if (stages.preStage.mode == 1) NarrowDetailColumns(strip, stages.preStage.gains);
        if (stages.preStage.mode == 2) KneeDetailColumns(strip, stages.preStage.gains);
    }
    for (int32_t out = 0; out < 3 * source.height / 2; ++out)
        for (int32_t x = 0; x < (source.width + 7) / 8 * 8; ++x) {
            int32_t sum = 0;
            for (int32_t k = 0; k < 8; ++k) {
                const int32_t row = std::clamp(2 * (out / 3) + out % 3 + k - 4, 0, source.height - 1);
                const int32_t word = 257 * SampleAt(source, sourceEnd, x, row) - 32768;
                const int32_t product = (PhaseOf(stages.taps, out % 3)[static_cast<size_t>(k)] * word) >> 16;
                sum = std::clamp(sum + product, -32768, 32767);
            }
            target.Row(out)[x] = Limited(std::clamp(sum + 0x2000, -32768, 32767) >> 6);
        }
    if (stages.crossOn) CrossColumns({target.data, source.width, target.height, target.stride}, stages.cross);
}

void PlainScaleChromaRows(const Plane& target, const Plane& source, bool chromaOdd) {
    const int32_t lastPair = (source.width + 1) / 2 - 1;
    for (int32_t y = 0; y < source.height; ++y) {
        const auto p = [&](int32_t x) { return int32_t{source.Row(y)[std::clamp(x, 0, source.width - 1)]}; };
        uint8_t* out = target.Row(y);
        for (int32_t n = 0; n <= lastPair; ++n, out += 3) {
            const int32_t weight = chromaOdd && n < lastPair ? 171 : 213;
            out[0] = static_cast<uint8_t>((weight * p(2 * n) + (256 - weight) * p(2 * n - 1)) >> 8);
            if (chromaOdd && n < lastPair) {
                out[1] = static_cast<uint8_t>((171 * p(2 * n) + 85 * p(2 * n + 1)) >> 8);
                out[2] = static_cast<uint8_t>(p(2 * n + 1));
            } else {
                out[1] = static_cast<uint8_t>((p(2 * n) + p(2 * n + 1)) >> 1);
                out[2] = static_cast<uint8_t>((213 * p(2 * n + 1) + 43 * p(2 * n + 2)) >> 8);
            }
        }
    }
}

void PlainScaleChromaColumns(const Plane& target, const Plane& source) {
    const int32_t height = source.height;
    if (height < 2) return;
    for (int32_t x = 0; x < source.width; ++x) {
        const auto r = [&](int32_t y) { return int32_t{source.Row(std::clamp(y, 0, height - 1))[x]}; };
        const auto store = [&](int32_t y, int32_t value) { target.Row(y)[x] = static_cast<uint8_t>(value); };
        for (int32_t n = 0; n < height / 2; ++n) {
            store(3 * n, (11 * r(2 * n - 1) + 53 * r(2 * n)) >> 6);
            store(3 * n + 1, (r(2 * n) + r(2 * n + 1)) >> 1);
            store(3 * n + 2, (53 * r(2 * n + 1) + 11 * r(2 * n + 2)) >> 6);
        }
        store(height / 2 * 3 - 1, r(height / 2 * 2 - 1));
        if (height % 2 != 0)
            for (int32_t i = 0; i < 2; ++i) store(height / 2 * 3 + i, r(height - 1));
    }
}

ThreeHalvesTaps UsualTaps() {
    return {{-1, 149, -925, 4093, 12929, 241, -223, 57},
            {8, 142, -1202, 9212, 9212, -1202, 142, 8},
            {57, -223, 241, 12929, 4093, -925, 149, -1}};
}

}  // namespace clarivex
