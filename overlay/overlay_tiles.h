// The buffer between overlay and video: what is drawn over the picture, in the form the output stages blend it.
#pragma once

#include <cstdint>

#include "overlay/rectangle.h"
#include "runtime/memory.h"

namespace clarivex {

/// Rows of groups of 8 pixels, 24 bytes a group: 8 luma terms, 8 keep factors (255 keeps the video, 0 removes it) and
/// 4 pairs of U and V terms. out = video · keep + term. The neutral pixel is luma term 0, keep 255, chroma terms 0.
///
/// A table says which rows hold something to blend. On the frame thread only. Sizes are in pixels, 0 … 65536.
class OverlayTiles {
public:
    static constexpr int32_t groupPixels = 8;
    static constexpr int32_t groupBytes = 24;
    static constexpr int32_t keepOffset = 8;     ///< keep factors in a group
    static constexpr int32_t chromaOffset = 16;  ///< U and V terms in a group
    static constexpr int32_t emptyRow = -1;      ///< entry of the row table: nothing to blend

    /// Sets the picture's size. Another size than before releases the store and marks every row as empty.
    void Resize(int32_t newWidth, int32_t newHeight);

    /// Gives the store another size, not cleared; picture size and row table stay. A side of 0 releases it.
    void Reallocate(int32_t newWidth, int32_t newHeight);

    /// Makes the groups that the rectangle touches neutral, as far as the store reaches.
    void ClearRectangle(const Rectangle& rectangle);

    /// Marks every row as holding nothing.
    void MarkAllRowsEmpty();

    /// Marks rows from `top` up to but not including `bottom`, as far as the table has them, as holding something.
    void MarkRows(int32_t top, int32_t bottom);

    /// The groups of row y, or null when there is nothing to blend: y outside the picture or its row marked empty.
    const uint8_t* Row(int32_t y) const;

    /// The group that pixel (x, y) stands in; x and y inside the allocated size.
    uint8_t* Group(int32_t x, int32_t y);

    int32_t Width() const { return width; }
    int32_t Height() const { return height; }
    int32_t AllocatedWidth() const { return allocatedWidth; }
    int32_t AllocatedHeight() const { return allocatedHeight; }

    /// Bytes from one row to the next.
    int32_t Stride() const { return stride; }

private:
    SampleBlock data;
    int32_t groupsPerRow = 0;
    int32_t stride = 0;
    int32_t allocatedWidth = 0;
    int32_t allocatedHeight = 0;
    AlignedArray<int32_t> rowTable;  // entry y is the store's row for picture row y, or emptyRow
    int32_t rowCount = 0;
    int32_t width = 0;
    int32_t height = 0;
};

}  // namespace clarivex
