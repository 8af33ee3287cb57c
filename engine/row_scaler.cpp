#include "engine/row_scaler.h"

#include <algorithm>
#include <cstring>

#include "algorithms/detail_arithmetic.h"

namespace clarivex {
namespace {

constexpr int32_t groupSamples = 8;  // source samples that the resampler takes at a time
constexpr int32_t storedGroup = 4;   // columns are stored up to a multiple of this

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

/// Room for all that a row of double length is made of.
int32_t RoomForDoubled(const Plane& target) { return target.width + 2 * groupSamples; }

}  // namespace

RowScaler::RowScaler(const Plane& target, const SourcePlane& source, const RowStages& stages, RowScratch& scratch,
                     const KernelTable& kernels)
    : target(target),
      source(source),
      width(source.plane.width),
      height(source.plane.height),
      stages(stages),
      kernels(kernels),
      readColumns((width + groupSamples - 1) / groupSamples * groupSamples),
      columns((target.width + storedGroup - 1) & ~(storedGroup - 1)),
      postFilter(stages.postTaps),
      cross(stages.cross, stages.crossOn ? scratch.line.Prepare(target.width + groupSamples) : nullptr),
      scratch(scratch),
      taps(PhaseAfterPhase(stages.taps)) {}

int32_t BandRows(const KernelTable& kernels) { return std::max(kernels.rowGroup, stripSize); }

void RowScaler::ScaleBand(int32_t y) {
    const SleepingRowStages& sleeping = stages.sleeping;
    const int32_t end = std::min(y + BandRows(kernels), height);
    for (int32_t strip = y; strip < end && sleeping.preStage.IsOn(); strip += stripSize)
        SmoothRowStrip(StripOf(source.writable, strip, height), sleeping.preStage);
    if (stages.scale == AxisScale::twofold)
        for (int32_t row = y; row < end; ++row) DoubleRowAt(row);
    else
        EnlargeRows(y, end - y);
    for (int32_t strip = y; strip < end; strip += stripSize) RunStripStages(strip);
}

/// The stages that need no other row: resampler, edge limiter and, where nothing stands between, the post filter.
void RowScaler::EnlargeRows(int32_t y, int32_t count) {
    const uint8_t* in[mostBandRows];
    uint8_t* out[mostBandRows];
    // Only rows that end with the memory are copied: the last one, and more only where they are shorter than a group.
    uint8_t* copy = scratch.source.Prepare(readColumns + mostBandRows * groupSamples);
    for (int32_t i = 0; i < count; ++i) {
        in[i] = ReadableRow(source, y + i, readColumns, copy);
        if (in[i] == copy) copy += readColumns;
        out[i] = RowOfTarget(y + i);
    }
    kernels.enlargeRows({in, out, count, readColumns, target.width, columns}, Filters(),
                        scratch.group.Prepare(rowWorkBytes));
    if (!FiltersInGroups())
        for (int32_t i = 0; i < count; ++i) FinishRow(y + i, out[i]);
}

RowFilters RowScaler::Filters() const {
    return {taps.data(), LimitsInGroups() ? &stages.edgeLimits : nullptr,
            PostFilterOnRow() && FiltersInGroups() ? postFilter.RightTaps() : nullptr,
            GeneralFirSpan({columns, target.width})};
}

bool RowScaler::LimitsInGroups() const { return stages.edgeStage == EdgeStage::full; }

/// Whether groups of rows are finished when they are enlarged.
bool RowScaler::FiltersInGroups() const {
    const bool inGroups = postFilter.form == DetailFirForm::general && postFilter.HasEqualSides();
    return stages.edgeStage != EdgeStage::simple && (!PostFilterOnRow() || inGroups);
}

void RowScaler::DoubleRowAt(int32_t y) {
    const int32_t room = RoomForDoubled(target);
    uint8_t* doubled = scratch.enlarged.Prepare(room);
    DoubleRow(source.plane, y, columns / 2, stages.sleeping.twofoldTaps.a, {scratch.source.Prepare(room), doubled},
              kernels);
    if (stages.edgeStage != EdgeStage::full) return FinishRow(y, doubled);
    uint8_t* limited = scratch.limited.Prepare(room);
    kernels.limitEdges(doubled, limited, target.width, stages.edgeLimits);
    std::memcpy(limited + target.width, doubled + target.width, static_cast<size_t>(columns - target.width));
    FinishRow(y, limited);
}

/// What an enlarged row still lacks: the simple edge limiter, the post filter, and its place in the target.
void RowScaler::FinishRow(int32_t y, const uint8_t* row) {
    uint8_t* work = scratch.limited.Prepare(RoomForDoubled(target));
    if (row != work) std::memcpy(work, row, static_cast<size_t>(columns));
    if (stages.edgeStage == EdgeStage::simple)
        LimitEdgesSimple({work, target.width, 1, target.stride}, stages.sleeping.simpleLimits);
    if (PostFilterOnRow())
        DetailFirRow(work, RowOfTarget(y), {columns, target.width}, postFilter,
                     scratch.words.Prepare(RoomForDoubled(target)), kernels);
    else
        std::memcpy(RowOfTarget(y), work, static_cast<size_t>(columns));
}

void RowScaler::RunStripStages(int32_t y) {
    const SleepingRowStages& sleeping = stages.sleeping;
    const bool filterWaits = stages.postFilterOn && PostFilterWaits(sleeping, postFilter.form);
    const int32_t room = RoomForDoubled(target);
    RunSleepingStages(StripOf(target, y, height), sleeping, filterWaits ? &stages.postTaps : nullptr, kernels,
                      {scratch.enlarged.Prepare(room), scratch.words.Prepare(room)});
    if (stages.crossOn) cross.Run(target, y);
}

bool RowScaler::PostFilterOnRow() const {
    return stages.postFilterOn && !PostFilterWaits(stages.sleeping, postFilter.form);
}

void ScaleLumaStrips(const Plane& target, const SourcePlane& source, const RowStages& stages, RowScratch& scratch,
                     const KernelTable& kernels) {
    RowScaler scaler(target, source, stages, scratch, kernels);
    for (int32_t y = 0; y < source.plane.height; y += BandRows(kernels)) scaler.ScaleBand(y);
}

}  // namespace clarivex
