#include "engine/row_scaler.h"

#include <algorithm>
#include <cstring>

#include "algorithms/detail_arithmetic.h"

namespace clarivex {
namespace {

constexpr int32_t groupSamples = 8;   // source samples that the resampler takes at a time
constexpr int32_t groupOutputs = 12;  // and what it makes of them
constexpr int32_t storedGroup = 4;    // columns are stored up to a multiple of this

/// The strip of a picture of `height` rows that begins with row y. Planes may be lower: they take the rows in turn.
Plane StripOf(const Plane& plane, int32_t y, int32_t height) {
    return {plane.Row(y % plane.height), plane.width, std::min(stripSize, height - y), plane.stride};
}

std::array<int16_t, 24> PhaseAfterPhase(const ThreeHalvesTaps& taps) {
    std::array<int16_t, 24> all{};
    std::copy(taps.a.begin(), taps.a.end(), all.begin());
    std::copy(taps.b.begin(), taps.b.end(), all.begin() + 8);
    std::copy(taps.c.begin(), taps.c.end(), all.begin() + 16);
    return all;
}

/// Room for all that a row is enlarged to, in groups as the resamplers write it.
int32_t RoomForEnlarged(const PlaneView& source, const RowStages& stages) {
    const int32_t read = (source.width + groupSamples - 1) / groupSamples * groupSamples;
    return stages.scale == AxisScale::twofold ? 2 * read : read / groupSamples * groupOutputs;
}

/// The word that splitRow makes of a sample. Worked out anew: reading back what was just stored would take longer.
int16_t CentredWord(uint8_t sample) {
    const int32_t centred = sample < 128 ? sample - 128 : std::min(sample - 127, 127);
    return static_cast<int16_t>(256 * centred + (centred & 255));
}

}  // namespace

RowScaler::RowScaler(const Plane& target, const SourcePlane& source, const RowStages& stages, RowScratch& scratch,
                     const KernelTable& kernels)
    : target(target),
      source(source),
      width(source.plane.width),
      height(source.plane.height),
      stages(stages),
      kernels(kernels),
      groups((width + groupSamples - 1) / groupSamples),
      columns((target.width + storedGroup - 1) & ~(storedGroup - 1)),
      postFilter(stages.postTaps),
      cross(stages.cross, stages.crossOn ? scratch.line.Prepare(target.width + groupSamples) : nullptr),
      rows{scratch.source.Prepare(groups * groupSamples),
           scratch.even.Prepare(groups * groupSamples / 2),
           scratch.odd.Prepare(groups * groupSamples / 2),
           scratch.enlarged.Prepare(RoomForEnlarged(source.plane, stages)),
           scratch.limited.Prepare(RoomForEnlarged(source.plane, stages)),
           scratch.words.Prepare(RoomForEnlarged(source.plane, stages))},
      taps(PhaseAfterPhase(stages.taps)) {}

void RowScaler::ScaleStrip(int32_t y) {
    const SleepingRowStages& sleeping = stages.sleeping;
    if (sleeping.preStage.IsOn()) SmoothRowStrip(StripOf(source.writable, y, height), sleeping.preStage);
    for (int32_t row = y; row < std::min(y + stripSize, height); ++row) ScaleRow(row);
    const bool filterWaits = stages.postFilterOn && PostFilterWaits(sleeping, postFilter.form);
    RunSleepingStages(StripOf(target, y, height), sleeping, filterWaits ? &stages.postTaps : nullptr, kernels,
                      {rows.enlarged, rows.words});
    if (stages.crossOn) cross.Run(target, y);
}

/// The stages that need no other row: resampler, edge limiter and, where nothing stands between, the post filter.
void RowScaler::ScaleRow(int32_t y) {
    if (stages.scale == AxisScale::twofold)
        DoubleRow(source.plane, y, columns / 2, stages.sleeping.twofoldTaps.a, {rows.source, rows.enlarged}, kernels);
    else
        EnlargeSourceRow(y);
    const uint8_t* limited = LimitRow();
    uint8_t* out = target.Row(y % target.height);
    if (PostFilterOnRow())
        DetailFirRow(limited, out, {columns, target.width}, postFilter, rows.words, kernels);
    else
        std::memcpy(out, limited, static_cast<size_t>(columns));
}

void RowScaler::EnlargeSourceRow(int32_t y) {
    SplitSourceRow(y);
    kernels.enlargeRow(rows.even, rows.odd, taps.data(), rows.enlarged, groups * groupSamples / 2);
}

void RowScaler::SplitSourceRow(int32_t y) {
    const int32_t count = groups * groupSamples;
    const uint8_t* row = ReadableRow(source, y, count, rows.source);
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
            LimitEdgesSimple({rows.enlarged, target.width, 1, target.stride}, stages.sleeping.simpleLimits);
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
    return stages.postFilterOn && !PostFilterWaits(stages.sleeping, postFilter.form);
}

void ScaleLumaStrips(const Plane& target, const SourcePlane& source, const RowStages& stages, RowScratch& scratch,
                     const KernelTable& kernels) {
    RowScaler scaler(target, source, stages, scratch, kernels);
    for (int32_t y = 0; y < source.plane.height; y += stripSize) scaler.ScaleStrip(y);
}

}  // namespace clarivex
