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

/// Tap k of the phase of an output, and the input sample that it stands on.
int32_t TwofoldTap(const TwofoldTaps& taps, int32_t out, int32_t k) {
    return taps.a[static_cast<size_t>(out % 2 == 0 ? k : 7 - k)];
}
int32_t TwofoldPosition(int32_t out, int32_t k) { return out / 2 + k - (out % 2 == 0 ? 4 : 3); }

void DoubleRows(const Plane& target, const Plane& source, const TwofoldTaps& taps) {
    const int32_t columns = std::min((2 * source.width + 3) / 4 * 4, target.stride);
    for (int32_t y = 0; y < source.height; ++y)
        for (int32_t out = 0; out < columns; ++out) {
            int32_t sum = 8192;
            for (int32_t k = 0; k < 8; ++k) {
                const int32_t tap = out == 0 && k == 2 ? taps.a[0] : TwofoldTap(taps, out, k);
                sum += tap * source.Row(y)[std::clamp(TwofoldPosition(out, k), 0, source.width - 1)];
            }
            target.Row(y)[out] = Limited(sum >> 14);
        }
}

void RankRows(const Plane& plane, RankStage stage) {
    for (int32_t y = 0; y < plane.height; ++y)
        for (int32_t x = 0; x < plane.width - 1; ++x) {
            const auto [smaller, larger] = std::minmax({plane.Row(y)[x], plane.Row(y)[x + 1]});
            if (stage != RankStage::none) plane.Row(y)[x] = stage == RankStage::smaller ? smaller : larger;
        }
}

/// A plane of wide samples.
struct WidePlane {
    int32_t width, height;
    std::vector<int32_t> samples;

    WidePlane(int32_t columns, int32_t rows)
        : width(columns), height(rows), samples(static_cast<size_t>(columns) * static_cast<size_t>(rows)) {}
    int32_t& At(int32_t x, int32_t y) {
        return samples[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

WidePlane Expanded(const Plane& source, const TwofoldTaps& taps) {
    WidePlane wide(2 * source.width, source.height);
    for (int32_t y = 0; y < wide.height; ++y)
        for (int32_t x = 0; x < wide.width; ++x) {
            int32_t sum = 128;
            for (int32_t k = 0; k < 8; ++k)
                sum += TwofoldTap(taps, x, k) * source.Row(y)[std::clamp(TwofoldPosition(x, k), 0, source.width - 1)];
            wide.At(x, y) = std::max(sum >> 8, 0);
        }
    return wide;
}

WidePlane DoubledDown(WidePlane& source, const TwofoldTaps& taps) {
    WidePlane wide(source.width, 2 * source.height);
    for (int32_t y = 0; y < wide.height; ++y)
        for (int32_t x = 0; x < wide.width; ++x) {
            int32_t sum = 8192;
            for (int32_t k = 0; k < 8; ++k)
                sum += TwofoldTap(taps, y, k) * source.At(x, std::clamp(TwofoldPosition(y, k), 0, source.height - 1));
            wide.At(x, y) = std::max(sum >> 14, 0);
        }
    return wide;
}

/// Replaces what the stages cover along an axis by make(at), at(i) being the sample i places further along it.
template <class Make>
WidePlane FilterWide(WidePlane& plane, bool down, Make make) {
    WidePlane out = plane;
    const int32_t length = down ? plane.height : plane.width;
    const int32_t end = 8 + 8 * std::max((length - 16) >> 3, 0);
    for (int32_t y = 0; y < plane.height; ++y)
        for (int32_t x = 0; x < plane.width; ++x) {
            const int32_t position = down ? y : x;
            const auto at = [&](int32_t i) { return down ? plane.At(x, y + i) : plane.At(x + i, y); };
            if (position >= 8 && position < end) out.At(x, y) = make(at);
        }
    return out;
}

WidePlane PostStages(WidePlane plane, bool down, const WideStages& stages, const DetailTaps& taps) {
    if (stages.limitEdges)
        plane = FilterWide(plane, down, [&](auto at) {
            int16_t words[5], limited = 0;
            const int16_t* rows[5];
            constexpr int32_t places[5] = {0, -1, 1, -3, 3};
            for (int32_t i = 0; i < 5; ++i) words[i] = static_cast<int16_t>(at(places[i]) - 32768);
            for (int32_t i = 0; i < 5; ++i) rows[i] = &words[i];
            plainKernels.limitEdgesWide(rows, &limited, 1, stages.edgeLimits);
            return limited + 32768;
        });
    if (stages.postFilterOn)
        plane = FilterWide(plane, down, [&](auto at) {
            int64_t sum = 0;
            for (int32_t k = 8; k < 16; ++k) sum += int64_t{taps[static_cast<size_t>(k)]} * (at(k - 8) + at(7 - k));
            return static_cast<int32_t>(std::clamp<int64_t>(sum >> 13, 0, 65535));
        });
    return plane;
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
    const bool even = form != DetailFirForm::general;
    const int32_t passes = even && stages.evenFilterPasses >= 3 ? stages.evenFilterPasses : 1;
    for (int32_t pass = 0; pass < passes; ++pass)
        FilterRows(plane, [&](const uint8_t* in, uint8_t* out) {
            DetailFirRow(in, out, plane.width, plane.width, stages.postTaps, form, plainKernels, nullptr);
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
    if (stages.scale == RowScale::twofold)
        DoubleRows(target, source, stages.twofoldTaps);
    else
        EnlargeRows(target, source, sourceEnd, stages.taps);
    RunEdgeStage(target, stages);
    if (stages.detailOn) KneeDetailRows(target, stages.detailGains, RowDither::checkerboard);
    if (stages.postFilterOn) RunPostFilter(target, stages);
    if (stages.boosterOn) BoostSmallSignals(target, stages.booster);
    if (stages.crossOn) RunCrossStage(target, stages.cross);
    RankRows(target, stages.rankStage);
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

void PlainScaleBothTwice(const Plane& target, const Plane& source, const WideStages& stages) {
    WidePlane rows = Expanded(source, stages.taps);
    WidePlane both = PostStages(DoubledDown(rows, stages.taps), true, stages, stages.columnTaps);
    both = PostStages(both, false, stages, stages.rowTaps);
    for (int32_t y = 0; y < both.height; ++y)
        for (int32_t x = 0; x < both.width; ++x) target.Row(y)[x] = Limited(both.At(x, y) >> 6);
}

void PlainDoubleChromaRows(const Plane& target, const Plane& source, bool chromaOdd) {
    const int32_t width = source.width;
    for (int32_t y = 0; y < source.height; ++y)
        for (int32_t i = 0; i < width; ++i) {
            const uint8_t* p = source.Row(y);
            uint8_t* out = target.Row(y) + 2 * i;
            const int32_t before = p[std::max(i - 1, 0)];
            const int32_t behind = p[std::min(i + 1, width - 1)];
            out[0] = static_cast<uint8_t>(chromaOdd ? (160 * p[i] + 96 * before) >> 8 : (96 * p[i] + 32 * before) >> 7);
            out[1] = static_cast<uint8_t>(chromaOdd ? (224 * p[i] + 32 * behind) >> 8 : (96 * p[i] + 32 * behind) >> 7);
            if (i == width - 1) out[1] = p[i];
        }
}

void PlainDoubleChromaColumns(const Plane& target, const Plane& source, bool chromaOdd) {
    for (int32_t x = 0; x < source.width; ++x) {
        std::vector<uint8_t> column(static_cast<size_t>(source.height)), doubled(2 * column.size());
        for (int32_t y = 0; y < source.height; ++y) column[static_cast<size_t>(y)] = source.Row(y)[x];
        PlainDoubleChromaRows({doubled.data(), 2 * source.height, 1, 2 * source.height},
                              {column.data(), source.height, 1, source.height}, chromaOdd);
        for (int32_t y = 0; y < 2 * source.height; ++y) target.Row(y)[x] = doubled[static_cast<size_t>(y)];
    }
}

ThreeHalvesTaps UsualTaps() {
    return {{-1, 149, -925, 4093, 12929, 241, -223, 57},
            {8, 142, -1202, 9212, 9212, -1202, 142, 8},
            {57, -223, 241, 12929, 4093, -925, 149, -1}};
}

TwofoldTaps UsualTwofoldTaps() {
    PrototypeDesign design;
    design.combWeightA = 0.38;
    design.combWeightB = -0.26;
    PrototypeKernel kernel;
    DesignPrototype(kernel, design);
    NormalisePrototype(kernel);
    return DesignTwofoldTaps(kernel);
}

}  // namespace clarivex
