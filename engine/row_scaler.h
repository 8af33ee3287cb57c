// Luma enlarged by three halves or by two along its rows, band by band, with all stages that work along the rows.
#pragma once

#include <array>
#include <cstdint>

#include "algorithms/detail_fir.h"
#include "algorithms/filter_design.h"
#include "algorithms/readable_row.h"
#include "algorithms/sharpen_params.h"
#include "algorithms/slack_row.h"
#include "engine/cross_stage.h"
#include "engine/scale_modes.h"
#include "engine/sleeping/row_stages.h"
#include "engine/stage_kinds.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// What runs on each band, and with which values.
struct RowStages {
    AxisScale scale = AxisScale::threeHalves;  ///< or twofold
    ThreeHalvesTaps taps;
    EdgeStage edgeStage = EdgeStage::full;
    EdgeLimits edgeLimits;
    bool postFilterOn = false;
    DetailTaps postTaps{};
    bool crossOn = false;
    CrossGains cross;
    SleepingRowStages sleeping;
};

/// Working memory of the scaler, kept between frames.
struct RowScratch {
    SlackRow<uint8_t> source;  ///< copies of rows that cannot be read in place
    SlackRow<uint8_t> group;   ///< of the kernel that makes groups of rows
    SlackRow<uint8_t> enlarged;
    SlackRow<uint8_t> limited;
    SlackRow<int16_t> words;
    SlackRow<uint8_t> line;
};

/// Rows that are made at a time: a multiple of 16 that suits the kernels.
int32_t BandRows(const KernelTable& kernels);

/// Enlarges `source` into `target`, in bands of rows that go through all stages while they are in the cache.
///
/// target     as many columns as the scale gives, stride a multiple of 64. Of the spare columns those up to the next
///            multiple of 4 are written. A plane lower than the source, of whole bands, takes its rows in turn: row y
///            goes to row y modulo its height. With the stage across the rows it is as high as the source.
/// source     width at least 1, for a twofold scale shortestDoubledRow; an active pre-stage works in place on it. Its
///            rows are read up to a multiple of 8 as far as memory goes, for a twofold scale up to their width.
/// edges      left of a row its first sample is repeated; right of it follow what memory holds, a copy of the last of
///            those samples, and mid-grey. A twofold scale repeats the last sample there; in the first output of a row
///            its first tap counts twice and its third not at all. The stages behind the resampler leave some samples
///            at both ends alone.
class RowScaler {
public:
    /// stages and scratch must outlive the scaler.
    RowScaler(const Plane& target, const SourcePlane& source, const RowStages& stages, RowScratch& scratch,
              const KernelTable& kernels);

    /// Makes the band of rows from y on, as far as the source has them; y = 0, BandRows, 2 · BandRows … in order. With the
    /// stage across the rows the band's last row is final only after the next band.
    void ScaleBand(int32_t y);

private:
    /// Rows of the picture at a time that kernels take by pointers.
    static constexpr int32_t mostBandRows = 64;

    uint8_t* RowOfTarget(int32_t y) const { return target.Row(y % target.height); }
    void EnlargeRows(int32_t y, int32_t count);
    void DoubleRowAt(int32_t y);
    void FinishRow(int32_t y, const uint8_t* row);
    void RunStripStages(int32_t y);
    RowFilters Filters() const;
    bool LimitsInGroups() const;
    bool FiltersInGroups() const;
    bool PostFilterOnRow() const;

    Plane target;
    SourcePlane source;
    int32_t width;  // of the source
    int32_t height;
    const RowStages& stages;
    const KernelTable& kernels;
    int32_t readColumns;
    int32_t columns;
    DetailFirFilter postFilter;
    CrossStage cross;
    RowScratch& scratch;
    std::array<int16_t, 24> taps;
};

/// Enlarges the whole `source` into `target`, as RowScaler does.
void ScaleLumaStrips(const Plane& target, const SourcePlane& source, const RowStages& stages, RowScratch& scratch,
                     const KernelTable& kernels);

}  // namespace clarivex
