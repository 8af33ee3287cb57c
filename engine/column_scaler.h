// Luma enlarged by three halves down its columns, without a transposed copy of the picture.
#pragma once

#include <array>
#include <cstdint>

#include "algorithms/filter_design.h"
#include "algorithms/readable_row.h"
#include "algorithms/slack_row.h"
#include "engine/row_sink.h"
#include "engine/sleeping/column_stages.h"
#include "simd/kernel_table.h"

namespace clarivex {

/// What runs in a pass down the columns.
struct ColumnStages {
    ThreeHalvesTaps taps;
    SleepingColumnStages sleeping;
};

/// Working memory of the pass, kept between frames.
struct ColumnScratch {
    SlackRow<int16_t> window;
    SlackRow<uint8_t> source;
};

/// Rows of the pictures that a pass leads from and to. Planes may hold fewer: row y of the source is then in row y modulo
/// its height.
struct ColumnHeights {
    int32_t source;
    int32_t target;
};

/// Enlarges `source` into `target` as source rows become final, so that they can be taken while they are in the cache.
///
/// target     the source's width, up to (3 · height) >> 1 rows; stride a multiple of 64. Spare columns up to the next
///            multiple of 8 are written.
/// source     a height below 4 gives no output. Its rows are read up to a multiple of 8 as far as memory goes.
/// edges      above and below the source its first and last row are repeated.
class ColumnScaler {
public:
    ColumnScaler(const Plane& target, const SourcePlane& source, const ColumnHeights& heights,
                 const ThreeHalvesTaps& taps, ColumnScratch& scratch, const KernelTable& kernels);

    /// Makes all target rows that need no source row from `finalRows` on; those before it can be made anew. Calls come
    /// with growing numbers, the last one with the source's height. With a sink they go there, as many at a time as the
    /// target holds.
    void Advance(int32_t finalRows, RowSink* sink = nullptr);

private:
    int32_t EndOfBatch(int32_t endSource) const;
    void ScalePart(int32_t x, const Plane& targetRows);

    Plane target;
    SourcePlane source;
    int32_t height;  // of the source
    std::array<const int16_t*, 3> phases;
    const KernelTable& kernels;
    int16_t* window;
    uint8_t* copy;
    int32_t columns;  // worked on: the width and its spare columns
    int32_t partColumns;
    int32_t rowCount;
    int32_t nextRow = 0;
    int32_t nextExpanded;  // source row that is next to be kept as words
};

/// Enlarges the whole `source` into `target`, as ColumnScaler does, with the stages around the resampler.
///
/// source  an active pre-stage works in place on it.
void ScaleLumaStrips(const Plane& target, const SourcePlane& source, const ColumnStages& stages, ColumnScratch& scratch,
                     const KernelTable& kernels);

}  // namespace clarivex
