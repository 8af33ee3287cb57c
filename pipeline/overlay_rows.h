// Rows of the overlay in the order of the output stages' kernels: one entry a column.
#pragma once

#include <cstdint>

#include "overlay/overlay_tiles.h"
#include "pipeline/frame_workspace.h"

namespace clarivex {

/// Terms and keep factors (0 … 32767) of one row. Slack rows.
struct OverlayTerms {
    const uint8_t* luma;
    const uint8_t* chroma;  ///< U and V in turn
    const int16_t* keep;
};

/// The overlay as far as it lies over a picture: nothing does when the picture is wider than the tiles.
class OverlayRows {
public:
    /// columns  of the picture's luma, an even number. tiles and scratch have to outlive the rows.
    OverlayRows(const OverlayTiles& tiles, int32_t columns, OutputScratch& scratch);

    /// Whether there is something to blend over row y.
    bool Has(int32_t y) const { return wideEnough && tiles.Row(y) != nullptr; }

    /// Takes the groups of a row that has some apart. Valid until the next call.
    OverlayTerms Terms(int32_t y) const;

    /// The same with the keep factors that the two samples of a chroma column share: the mean of both columns' factors.
    OverlayTerms ChromaTerms(int32_t y) const;

private:
    const OverlayTiles& tiles;
    int32_t columns;
    OutputScratch& scratch;
    bool wideEnough;
};

}  // namespace clarivex
