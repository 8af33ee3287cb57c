#include "overlay/overlay_tiles.h"

#include <algorithm>
#include <cstring>

namespace clarivex {
namespace {

int32_t GroupsFor(int32_t pixels) { return (pixels + OverlayTiles::groupPixels - 1) / OverlayTiles::groupPixels; }

/// Whole blocks of 8 rows and one row more, with room for a wide store behind the last group.
size_t StoreBytes(int32_t stride, int32_t rows) {
    if (stride == 0 || rows == 0) return 0;
    constexpr uint64_t spareBytes = 32;
    const uint64_t rowsKept = static_cast<uint64_t>(rows + 7) / 8 * 8 + 1;
    return static_cast<size_t>(std::min<uint64_t>(rowsKept * static_cast<uint64_t>(stride) + spareBytes, SIZE_MAX));
}

void MakeNeutral(uint8_t* group) {
    std::memset(group, 0, OverlayTiles::groupBytes);
    std::memset(group + OverlayTiles::keepOffset, 255, OverlayTiles::groupPixels);
}

}  // namespace

void OverlayTiles::Resize(int32_t newWidth, int32_t newHeight) {
    if (newWidth == width && newHeight == height) return;
    Reallocate(0, 0);
    width = height = rowCount = 0;
    rowTable.reset();
    rowTable = MakeAlignedArray<int32_t>(static_cast<size_t>(newHeight));
    rowCount = newHeight;
    width = newWidth;
    height = newHeight;
    MarkAllRowsEmpty();
}

void OverlayTiles::Reallocate(int32_t newWidth, int32_t newHeight) {
    if (newWidth == allocatedWidth && newHeight == allocatedHeight) return;
    allocatedWidth = allocatedHeight = stride = groupsPerRow = 0;
    data.reset();
    const int32_t groups = GroupsFor(newWidth);
    const int32_t rowBytes = groups * groupBytes;
    data = MakeAlignedArray<uint8_t>(StoreBytes(rowBytes, newHeight));
    allocatedWidth = newWidth;
    allocatedHeight = newHeight;
    groupsPerRow = groups;
    stride = rowBytes;
}

void OverlayTiles::ClearRectangle(const Rectangle& rectangle) {
    const int32_t firstGroup = std::max(rectangle.left, 0) / groupPixels;
    const int32_t endGroup = std::min(GroupsFor(rectangle.right), groupsPerRow);
    for (int32_t y = std::max(rectangle.top, 0); y < std::min(rectangle.bottom, allocatedHeight); ++y)
        for (int32_t g = firstGroup; g < endGroup; ++g) MakeNeutral(Group(g * groupPixels, y));
}

void OverlayTiles::MarkAllRowsEmpty() { std::fill_n(rowTable.get(), rowCount, emptyRow); }

void OverlayTiles::MarkRows(int32_t top, int32_t bottom) {
    for (int32_t y = std::max(top, 0); y < std::min(bottom, rowCount); ++y) rowTable[static_cast<size_t>(y)] = y;
}

const uint8_t* OverlayTiles::Row(int32_t y) const {
    if (y < 0 || y >= rowCount || y >= height) return nullptr;
    const int32_t row = rowTable[static_cast<size_t>(y)];
    // The store may have shrunk under a table that still names its rows.
    if (row < 0 || row >= height || row >= allocatedHeight) return nullptr;
    return data.get() + static_cast<ptrdiff_t>(row) * stride;
}

uint8_t* OverlayTiles::Group(int32_t x, int32_t y) {
    return data.get() + static_cast<ptrdiff_t>(y) * stride + x / groupPixels * groupBytes;
}

}  // namespace clarivex
