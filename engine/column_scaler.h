// Luma enlarged by three halves down its columns, without a transposed copy of the picture.
#pragma once

#include <cstdint>

#include "algorithms/filter_design.h"
#include "algorithms/slack_row.h"
#include "engine/cross_stage.h"
#include "engine/row_scaler.h"

namespace clarivex {

/// What runs in a pass down the columns.
struct ColumnStages {
    ThreeHalvesTaps taps;
    PreStage preStage;  ///< works in place on the source
    bool crossOn = false;
    CrossGains cross;
};

/// Working memory of the pass, kept between frames: source rows as words, as many as the filter's window needs.
struct ColumnScratch {
    static constexpr int32_t windowRows = 16;
    SlackRow<int16_t> window[windowRows];
    SlackRow<const int16_t*> rowsByTap;  ///< window rows by source row, with those above and below the source
    SlackRow<uint8_t> source;
};

/// Enlarges `source` into `target`.
///
/// target     the source's width, up to (3 · height) >> 1 rows; stride a multiple of 64. Spare columns up to the next
///            multiple of 8 are written.
/// source     written to only by an active pre-stage, which needs a working image. A height below 4 gives no output.
/// sourceEnd  end of the memory that may be read behind the source: its rows are read up to a multiple of 8.
/// edges      above and below the source its first and last row are repeated.
void ScaleLumaStrips(const Plane& target, const Plane& source, const uint8_t* sourceEnd, const ColumnStages& stages,
                     ColumnScratch& scratch, const KernelTable& kernels);

}  // namespace clarivex
