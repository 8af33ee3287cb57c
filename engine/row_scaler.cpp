#include "engine/row_scaler.h"

#include <algorithm>
#include <cstring>

#include "algorithms/detail_strips.h"

namespace clarivex {
namespace {

constexpr int32_t groupSamples = 8;   // source samples that the resampler takes at a time
constexpr int32_t groupOutputs = 12;  // and what it makes of them
constexpr int32_t storedGroup = 4;    // columns are stored up to a multiple of this

Plane StripOf(const Plane& plane, int32_t y) {
    return {plane.Row(y), plane.width, std::min(stripSize, plane.height - y), plane.stride};
}

std::array<int16_t, 24> PhaseAfterPhase(const ThreeHalvesTaps& taps) {
    std::array<int16_t, 24> all{};
    std::copy(taps.a.begin(), taps.a.end(), all.begin());
    std::copy(taps.b.begin(), taps.b.end(), all.begin() + 8);
    std::copy(taps.c.begin(), taps.c.end(), all.begin() + 16);
    return all;
}

/// The word that splitRow makes of a sample. Worked out anew: reading back what was just stored would take longer.
int16_t CentredWord(uint8_t sample) {
    const int32_t centred = sample < 128 ? sample - 128 : std::min(sample - 127, 127);
    return static_cast<int16_t>(256 * centred + (centred & 255));
}

}  // namespace

RowScaler::RowScaler(const Plane& target, const Plane& source, const uint8_t* sourceEnd, const RowStages& stages,
                     RowScratch& scratch, const KernelTable& kernels)
    : target(target),
      source(source),
      sourceEnd(sourceEnd),
      stages(stages),
      kernels(kernels),
      groups((source.width + groupSamples - 1) / groupSamples),
      columns((target.width + storedGroup - 1) & ~(storedGroup - 1)),
      form(stages.postFilterOn ? ChooseDetailFirForm(stages.postTaps) : DetailFirForm::general),
      cross(stages.cross, stages.crossOn ? scratch.line.Prepare(target.width + groupSamples) : nullptr),
      rows{scratch.source.Prepare(groups * groupSamples),  scratch.even.Prepare(groups * groupSamples / 2),
           scratch.odd.Prepare(groups * groupSamples / 2), scratch.enlarged.Prepare(groups * groupOutputs),
           scratch.limited.Prepare(groups * groupOutputs), scratch.words.Prepare(groups * groupOutputs)},
      taps(PhaseAfterPhase(stages.taps)) {}

void RowScaler::ScaleStrip(int32_t y) {
    RunPreStage(y);
    for (int32_t row = y; row < std::min(y + stripSize, source.height); ++row) ScaleRow(row);
    RunStripStages(StripOf(target, y));
    if (stages.crossOn) cross.Run(target, y);
}

void RowScaler::RunPreStage(int32_t y) {
    const Plane strip = StripOf(source, y);
    const bool bottom = y + strip.height == source.height;
    if (stages.preStage.gated) GatedDetailRows(strip, stages.preStage.gains, RowDither::byRow);
    if (stages.preStage.mode == 1)
        NarrowDetailRows(strip, stages.preStage.gains, bottom);
    else if (stages.preStage.mode == 2)
        KneeDetailRows(strip, stages.preStage.gains, RowDither::byRow);
}

/// The stages that need no other row: resampler, edge limiter and, where nothing stands between, the post filter.
void RowScaler::ScaleRow(int32_t y) {
    SplitSourceRow(y);
    kernels.enlargeRow(rows.even, rows.odd, taps.data(), rows.enlarged, groups * groupSamples / 2);
    const uint8_t* limited = LimitRow();
    if (PostFilterOnRow())
        FilterRow(limited, target.Row(y));
    else
        std::memcpy(target.Row(y), limited, static_cast<size_t>(columns));
}

void RowScaler::SplitSourceRow(int32_t y) {
    const int32_t count = groups * groupSamples;
    const uint8_t* row = ReadableRow(source, y, count, sourceEnd, rows.source);
    const int16_t first = CentredWord(row[0]);
    for (int32_t n = 1; n <= 2; ++n) rows.even[-n] = rows.odd[-n] = first;
    kernels.splitRow(row, rows.even, rows.odd, count);
    // One more sample is a copy of the last; behind it the far taps see mid-grey.
    const int32_t half = count / 2;
    rows.even[half] = CentredWord(row[count - 1]);
    rows.odd[half] = rows.even[half + 1] = rows.odd[half + 1] = 0;
}

const uint8_t* RowScaler::LimitRow() {
    switch (stages.edgeStage) {
        case EdgeStage::none: break;
        case EdgeStage::simple:
            LimitEdgesSimple({rows.enlarged, target.width, 1, target.stride}, stages.simpleLimits);
            break;
        case EdgeStage::full:
            kernels.limitEdges(rows.enlarged, rows.limited, target.width, stages.edgeLimits);
            std::memcpy(rows.limited + target.width, rows.enlarged + target.width,
                        static_cast<size_t>(columns - target.width));
            return rows.limited;
    }
    return rows.enlarged;
}

bool RowScaler::PostFilterOnRow() const {
    return stages.postFilterOn && form == DetailFirForm::general && !stages.detailOn;
}

void RowScaler::FilterRow(const uint8_t* row, uint8_t* out) {
    const int32_t filteredGroups = std::max((target.width - 8) >> 2, 0);
    kernels.fir7(row, out, columns, 4, 4 + 4 * filteredGroups, &stages.postTaps[5], rows.words);
}

void RowScaler::RunStripStages(const Plane& strip) {
    if (stages.detailOn) KneeDetailRows(strip, stages.detailGains, RowDither::checkerboard);
    if (stages.postFilterOn && !PostFilterOnRow())
        DetailFir(strip, stages.postTaps, stages.evenFilterPasses, kernels, {rows.enlarged, rows.words});
    if (stages.boosterOn) BoostSmallSignals(strip, stages.booster);
}

void ScaleLumaStrips(const Plane& target, const Plane& source, const uint8_t* sourceEnd, const RowStages& stages,
                     RowScratch& scratch, const KernelTable& kernels) {
    RowScaler scaler(target, source, sourceEnd, stages, scratch, kernels);
    for (int32_t y = 0; y < source.height; y += stripSize) scaler.ScaleStrip(y);
}

}  // namespace clarivex
