#include "overlay/rasteriser.h"

#include <algorithm>
#include <utility>

namespace clarivex {
namespace {

constexpr int64_t cellSide = 256;  // a pixel in the rasteriser's units

/// Four million pixels: nobody sees what lies beyond, and the product of two distances still fits in 64 bits.
constexpr int64_t farthest = int64_t{1} << 30;

/// In 1/256 pixel of the mask.
struct MaskPoint {
    int64_t x;
    int64_t y;
};

/// A straight line that is not horizontal. Every crossing comes from its own two ends, however little of it is painted,
/// so that neighbouring rows and cells meet in the same point.
struct Line {
    MaskPoint from;
    MaskPoint to;

    int64_t XAt(int64_t y) const { return from.x + (y - from.y) * (to.x - from.x) / (to.y - from.y); }
    int64_t YAt(int64_t x) const { return from.y + (x - from.x) * (to.y - from.y) / (to.x - from.x); }
    int64_t Top() const { return std::min(from.y, to.y); }
    int64_t Bottom() const { return std::max(from.y, to.y); }
};

/// A row of the mask that takes the terms of a line: lines that go up add, lines that go down take away.
struct MaskRow {
    uint8_t* cells;
    int32_t width;
    int32_t direction;

    void Add(int64_t cell, int64_t term) { cells[cell] = static_cast<uint8_t>(cells[cell] + direction * term); }

    /// A piece of a line inside one cell. `share`, of 256, of its height takes effect in the cell itself, the rest from
    /// the next one on.
    void Deposit(int64_t cell, int64_t height, int64_t share) {
        const int64_t own = (share * height) >> 8;
        Add(cell, own);
        if (cell + 1 < width) Add(cell + 1, height - own);
    }
};

int64_t ToMask(int32_t coordinate, int32_t scale, int32_t translate, int32_t offset) {
    const int64_t scaled = (static_cast<int64_t>(coordinate) * scale) >> 16;
    return std::clamp(scaled + translate + offset * cellSide, -farthest, farthest);
}

MaskPoint ToMask(const OutlineTransform& transform, OutlinePoint point) {
    return {ToMask(point.x, transform.scaleX, transform.translateX, transform.offsetX),
            ToMask(point.y, transform.scaleY, transform.translateY, transform.offsetY)};
}

/// The y of a row as coverage: 255 from its upper to its lower edge. Heights are differences of levels, so those of
/// neighbouring cells add up to the height of all of them.
int64_t Level(int64_t y) { return (y * 255) >> 8; }

/// The mean distance from the piece of a line in a cell to the cell's right edge, for a line from `left` to `right` in
/// one row.
int64_t Share(int64_t cell, int64_t left, int64_t right) {
    const int64_t cellLeft = cell * cellSide;
    const bool begins = left >= cellLeft;
    const bool ends = right < cellLeft + cellSide;
    if (begins && ends) return cellSide - ((left + right - 2 * cellLeft) >> 1);
    if (begins) return (cellLeft + cellSide - left) >> 1;
    if (ends) return cellSide - ((right - cellLeft) >> 1);
    return cellSide / 2;
}

/// Adds what a line has inside one row, whose upper edge is at `rowTop`: the part from `top` to `bottom`. Cells are
/// visited from left to right, whichever way the line goes.
void RasteriseRow(const Line& line, int64_t rowTop, MaskPoint top, MaskPoint bottom, MaskRow row) {
    const bool goesRight = top.x <= bottom.x;
    const auto [left, right] = goesRight ? std::pair(top, bottom) : std::pair(bottom, top);
    const int64_t lastCell = right.x >> 8;
    const auto levelAtEndOf = [&, endY = right.y](int64_t cell) {
        return Level((cell == lastCell ? endY : line.YAt((cell + 1) * cellSide)) - rowTop);
    };
    int64_t level = Level(left.y - rowTop);
    const auto heightUpTo = [&](int64_t nextLevel) {
        const int64_t height = nextLevel - std::exchange(level, nextLevel);
        return goesRight ? height : -height;
    };
    const int64_t firstCell = left.x >> 8;
    if (firstCell < 0) row.Add(0, heightUpTo(levelAtEndOf(std::min<int64_t>(lastCell, -1))));
    const int64_t endCell = std::min<int64_t>(lastCell + 1, row.width);
    for (int64_t cell = std::max<int64_t>(firstCell, 0); cell < endCell; ++cell)
        row.Deposit(cell, heightUpTo(levelAtEndOf(cell)), Share(cell, left.x, right.x));
}

void RasteriseContours(const OutlineTransform& transform, std::span<const OutlinePoint> points, MaskBitmap& mask) {
    if (points.empty()) return;
    OutlinePoint start = points[0];
    for (size_t i = 1; i < points.size(); ++i) {
        const OutlinePoint from = points[i - 1];
        const OutlinePoint to = points[i];
        if (from.x == contourBreakValue)
            start = to;
        else
            RasteriseLine(transform, mask, from, to.x == contourBreakValue ? start : to);
    }
}

/// Turns the terms of a row into coverage, from column `left` up to but not including `right`.
void SumRow(uint8_t* row, int32_t left, int32_t right) {
    uint8_t sum = 0;
    for (int32_t x = left; x < right; ++x) row[x] = sum = static_cast<uint8_t>(sum + row[x]);
}

}  // namespace

void RasteriseLine(const OutlineTransform& transform, MaskBitmap& mask, OutlinePoint from, OutlinePoint to) {
    const Line line{ToMask(transform, from), ToMask(transform, to)};
    if (line.from.y == line.to.y || mask.AllocatedWidth() == 0) return;
    const int32_t direction = line.from.y < line.to.y ? -1 : 1;
    const int64_t firstRow = std::max<int64_t>(line.Top() >> 8, 0);
    const int64_t endRow = std::min<int64_t>(((line.Bottom() - 1) >> 8) + 1, mask.AllocatedHeight());
    for (int64_t row = firstRow; row < endRow; ++row) {
        const int64_t rowTop = row * cellSide;
        const int64_t top = std::max(line.Top(), rowTop);
        const int64_t bottom = std::min(line.Bottom(), rowTop + cellSide);
        RasteriseRow(line, rowTop, {line.XAt(top), top}, {line.XAt(bottom), bottom},
                     {mask.Row(static_cast<int32_t>(row)), mask.AllocatedWidth(), direction});
    }
}

void PaintOutline(const OutlineTransform& transform, std::span<const OutlinePoint> points, MaskBitmap& mask,
                  const Region& region) {
    RasteriseContours(transform, points, mask);
    const Rectangle bounds = RegionBounds(region);
    const int32_t left = std::max(bounds.left, 0);
    const int32_t right = std::min(bounds.right, mask.AllocatedWidth());
    const int32_t bottom = std::min(bounds.bottom, mask.AllocatedHeight());
    for (int32_t y = std::max(bounds.top, 0); y < bottom; ++y) SumRow(mask.Row(y), left, right);
}

}  // namespace clarivex
