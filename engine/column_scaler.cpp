#include "engine/column_scaler.h"

#include <algorithm>
#include <array>

#include "algorithms/detail_strips.h"
#include "algorithms/readable_row.h"

namespace clarivex {
namespace {

constexpr int32_t smallestHeight = 4;
constexpr int32_t tapCount = 8;
constexpr int32_t tapsAbove = 4;  // taps on rows above the one that a phase refers to

// Columns that are walked together: the window's rows of words stay in the first-level cache.
constexpr int32_t walkColumns = 512;

/// A part of the columns, walked from the top to the bottom.
class ColumnWalk {
public:
    ColumnWalk(const Plane& target, const Plane& source, const uint8_t* sourceEnd, const ThreeHalvesTaps& taps,
               ColumnScratch& scratch, const KernelTable& kernels)
        : target(target),
          source(source),
          sourceEnd(sourceEnd),
          phases{taps.a.data(), taps.b.data(), taps.c.data()},
          kernels(kernels),
          copy(scratch.source.Prepare(target.width)),
          rowsByTap(scratch.rowsByTap.Prepare(source.height + tapCount)) {
        for (size_t i = 0; i < window.size(); ++i) window[i] = scratch.window[i].Prepare(walkColumns);
        for (int32_t i = 0; i < source.height + tapCount; ++i)
            rowsByTap[i] = WindowRow(std::clamp(i - tapsAbove, 0, source.height - 1));
    }

    void Run() {
        const int32_t rows = std::min((3 * source.height) >> 1, target.height);
        for (int32_t y = 0; y < rows; ++y) {
            const int32_t reference = 2 * (y / 3) + y % 3;  // the input row that tap 4 stands on
            ExpandUpTo(reference + tapCount - tapsAbove - 1);
            kernels.enlargeColumns(rowsByTap + reference, phases[static_cast<size_t>(y % 3)], target.Row(y),
                                   target.width);
        }
    }

private:
    int16_t* WindowRow(int32_t y) const { return window[static_cast<size_t>(y % ColumnScratch::windowRows)]; }

    void ExpandUpTo(int32_t last) {
        for (; expanded <= std::min(last, source.height - 1); ++expanded)
            kernels.expandRow(ReadableRow(source, expanded, target.width, sourceEnd, copy), WindowRow(expanded),
                              target.width);
    }

    Plane target;
    Plane source;
    const uint8_t* sourceEnd;
    std::array<const int16_t*, 3> phases;
    const KernelTable& kernels;
    uint8_t* copy;
    const int16_t** rowsByTap;
    std::array<int16_t*, ColumnScratch::windowRows> window{};
    int32_t expanded = 0;
};

/// The part of a plane from column x on, at most `width` columns of the `columns` that are worked on.
Plane ColumnsOf(const Plane& plane, int32_t x, int32_t width, int32_t columns) {
    return {plane.data + x, std::min(width, columns - x), plane.height, plane.stride};
}

/// Strips are whole: spare columns to the right are read again by a pass along the rows.
Plane StripOf(const Plane& plane, int32_t x) { return {plane.data + x, stripSize, plane.height, plane.stride}; }

void RunPreStage(const Plane& source, const PreStage& preStage) {
    if (!preStage.IsOn()) return;
    for (int32_t x = 0; x < source.width; x += stripSize) {
        const Plane strip = StripOf(source, x);
        if (preStage.gated) GatedDetailColumns(strip, preStage.gains);
        if (preStage.mode == 1)
            NarrowDetailColumns(strip, preStage.gains);
        else if (preStage.mode == 2)
            KneeDetailColumns(strip, preStage.gains);
    }
}

}  // namespace

void ScaleLumaStrips(const Plane& target, const Plane& source, const uint8_t* sourceEnd, const ColumnStages& stages,
                     ColumnScratch& scratch, const KernelTable& kernels) {
    if (source.height < smallestHeight) return;
    RunPreStage(source, stages.preStage);
    const int32_t columns = (source.width + 7) & ~7;
    for (int32_t x = 0; x < columns; x += walkColumns) {
        const Plane part = ColumnsOf(target, x, walkColumns, columns);
        ColumnWalk(part, ColumnsOf(source, x, walkColumns, source.width), sourceEnd, stages.taps, scratch, kernels)
            .Run();
    }
    if (stages.crossOn)
        for (int32_t x = 0; x < source.width; x += stripSize) CrossColumns(StripOf(target, x), stages.cross);
}

}  // namespace clarivex
