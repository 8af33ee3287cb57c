#include "engine/column_scaler.h"

#include <algorithm>

#include "algorithms/detail_arithmetic.h"
#include "algorithms/readable_row.h"
#include "engine/sleeping/cross_columns.h"

namespace clarivex {
namespace {

constexpr int32_t smallestHeight = 4;
constexpr int32_t tapCount = 8;
constexpr int32_t tapsAbove = 4;  // taps on rows above the one that a phase refers to

// Source rows are kept as words while taps stand on them. The columns go in parts, one as wide as the other, of which the
// window, eight to ten rows in use, stays in the first-level cache.
constexpr int32_t windowRows = 16;
constexpr int32_t mostPartColumns = 1152;
constexpr int32_t partMultiple = 64;
constexpr int32_t windowStride = slackBefore + mostPartColumns + slackBehind;
constexpr int32_t partWindow = windowRows * windowStride;

int32_t PartColumns(int32_t columns) {
    const int32_t parts = std::max((columns + mostPartColumns - 1) / mostPartColumns, 1);
    return ((columns + parts - 1) / parts + partMultiple - 1) / partMultiple * partMultiple;
}

/// The source row behind the last one that output row y takes.
int32_t EndOfTaps(int32_t y) { return 2 * (y / 3) + y % 3 + tapCount - tapsAbove; }

/// Rows of a part's window by source row, modulo its size; rows above and below the source are repeated in it.
class Window {
public:
    explicit Window(int16_t* first) {
        for (int32_t i = 0; i < 2 * windowRows; ++i) rows[i] = first + i % windowRows * windowStride;
    }

    /// The pointers to this row and the next ones, at least as many as there are taps.
    int16_t* const* From(int32_t row) const { return &rows[row & (windowRows - 1)]; }

private:
    int16_t* rows[2 * windowRows];  // twice, so that a run of them can begin anywhere
};

template <class PlaneKind>
PlaneKind WithWidth(PlaneKind plane, int32_t width) {
    plane.width = width;
    return plane;
}

}  // namespace

ColumnScaler::ColumnScaler(const Plane& target, const SourcePlane& source, const ColumnHeights& heights,
                           const ThreeHalvesTaps& taps, ColumnScratch& scratch, const KernelTable& kernels)
    : target(target),
      source(source),
      height(heights.source),
      phases{taps.a.data(), taps.b.data(), taps.c.data()},
      kernels(kernels),
      columns((source.plane.width + 7) & ~7),
      partColumns(PartColumns(columns)),
      rowCount(height < smallestHeight ? 0 : std::min((3 * height) >> 1, heights.target)),
      nextExpanded(-tapsAbove) {
    const int32_t parts = columns == 0 ? 0 : (columns + partColumns - 1) / partColumns;
    window = scratch.window.Prepare(parts * partWindow);
    copy = scratch.source.Prepare(mostPartColumns);
}

void ColumnScaler::Advance(int32_t finalRows, RowSink* sink) {
    // Rows below the picture are as final as its last one.
    const int32_t endSource = finalRows < height ? finalRows : height + tapCount;
    for (int32_t endRow = EndOfBatch(endSource); endRow > nextRow; endRow = EndOfBatch(endSource)) {
        const Plane rows = RowsOf(target, sink == nullptr ? nextRow : 0, endRow - nextRow);
        for (int32_t x = 0; x < columns; x += partColumns) ScalePart(x, rows);
        nextExpanded = EndOfTaps(endRow - 1);
        if (sink != nullptr) sink->TakeLuma(nextRow, rows);
        nextRow = endRow;
    }
}

/// The row behind those that can be made next, as many as the target holds.
int32_t ColumnScaler::EndOfBatch(int32_t endSource) const {
    const int32_t most = std::min(rowCount, nextRow + target.height);
    int32_t endRow = nextRow;
    while (endRow < most && EndOfTaps(endRow) <= endSource) ++endRow;
    return endRow;
}

void ColumnScaler::ScalePart(int32_t x, const Plane& targetRows) {
    const Plane to = WithWidth(RightOf(targetRows, x), std::min(partColumns, columns - x));
    SourcePlane from = source.RightOf(x);
    from.plane = WithWidth(from.plane, std::min(partColumns, source.plane.width - x));
    const Window rows(window + x / partColumns * partWindow);
    int32_t expanded = nextExpanded;
    for (int32_t i = 0; i < to.height; ++i) {
        const int32_t endOfTaps = EndOfTaps(nextRow + i);
        for (; expanded < endOfTaps; ++expanded) {
            const int32_t row = std::clamp(expanded, 0, height - 1);
            kernels.expandRow(ReadableRow(from, row % from.plane.height, to.width, copy), *rows.From(expanded),
                              to.width);
        }
        kernels.enlargeColumns(rows.From(endOfTaps - tapCount), phases[static_cast<size_t>((nextRow + i) % 3)],
                               to.Row(i), to.width);
    }
}

void ScaleLumaStrips(const Plane& target, const SourcePlane& source, const ColumnStages& stages, ColumnScratch& scratch,
                     const KernelTable& kernels) {
    if (source.plane.height < smallestHeight) return;
    const SleepingColumnStages& sleeping = stages.sleeping;
    if (sleeping.preStage.IsOn()) SmoothColumnStrips(source.writable, sleeping.preStage);
    const int32_t height = source.plane.height;
    ColumnScaler(target, source, {height, target.height}, stages.taps, scratch, kernels).Advance(height);
    if (sleeping.crossOn) {  // spare columns too: a pass along the rows reads them
        const int32_t columns = (source.plane.width + stripSize - 1) & ~(stripSize - 1);
        CrossColumns({target.data, columns, target.height, target.stride}, sleeping.cross);
    }
}

}  // namespace clarivex
