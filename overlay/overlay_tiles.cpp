#include "overlay/overlay_tiles.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace clarivex {
namespace {

int32_t GroupsFor(int32_t pixels) { return (pixels + OverlayTiles::groupPixels - 1) / OverlayTiles::groupPixels; }

void MakeNeutral(uint8_t* group) {
    std::memset(group, 0, OverlayTiles::groupBytes);
    std::memset(group + OverlayTiles::keepOffset, 255, OverlayTiles::groupPixels);
}

}  // namespace

void OverlayTiles::Resize(int32_t newWidth, int32_t newHeight) {
    if (newWidth != width || newHeight != height) {
        width = newWidth;
        height = newHeight;
        Reallocate(newWidth, newHeight);
    }
    if (rowCount != newHeight) {
        rowTable.reset();
        rowTable = MakeAlignedArray<int32_t>(static_cast<size_t>(newHeight));
        rowCount = newHeight;
    }
    std::iota(rowTable.get(), rowTable.get() + rowCount, 0);
}

void OverlayTiles::Reallocate(int32_t newWidth, int32_t newHeight) {
    if (newWidth == allocatedWidth && newHeight == allocatedHeight) {
        return;
    }
    constexpr uint64_t spareBytes = 32;
    allocatedWidth = newWidth;
    allocatedHeight = newHeight;
    groupsPerRow = GroupsFor(newWidth);
    stride = groupsPerRow * groupBytes;
    const uint64_t rowsKept = static_cast<uint64_t>(newHeight + 7) / 8 * 8 + 1;
    const uint64_t bytes = rowsKept * static_cast<uint64_t>(stride) + spareBytes;
    data.reset();
    data = MakeAlignedArray<uint8_t>(static_cast<size_t>(std::min<uint64_t>(bytes, SIZE_MAX)));
}

void OverlayTiles::ClearRectangle(const Rectangle& rectangle) {
    const int32_t firstGroup = std::max(rectangle.left, 0) / groupPixels;
    const int32_t endGroup = std::min(GroupsFor(rectangle.right), groupsPerRow);
    for (int32_t y = std::max(rectangle.top, 0); y < std::min(rectangle.bottom, allocatedHeight); ++y) {
        for (int32_t g = firstGroup; g < endGroup; ++g) {
            MakeNeutral(Group(g * groupPixels, y));
        }
    }
}

void OverlayTiles::MarkAllRowsEmpty() { std::fill_n(rowTable.get(), rowCount, emptyRow); }

void OverlayTiles::MarkRows(int32_t top, int32_t bottom) {
    for (int32_t y = std::max(top, 0); y < std::min(bottom, rowCount); ++y) {
        rowTable[static_cast<size_t>(y)] = y;
    }
}

const uint8_t* OverlayTiles::Row(int32_t y) const {
    if (y < 0 || y >= rowCount || y >= height) {
        return nullptr;
    }
    const int32_t row = rowTable[static_cast<size_t>(y)];
    // The store may have shrunk under a table that still names its rows.
    if (row < 0 || row >= height || row >= allocatedHeight) {
        return nullptr;
    }
    return data.get() + static_cast<ptrdiff_t>(row) * stride;
}

uint8_t* OverlayTiles::Group(int32_t x, int32_t y) {
    return data.get() + static_cast<ptrdiff_t>(y) * stride + x / groupPixels * groupBytes;
}

}  // namespace clarivex
