// Rows of the overlay in the order of the output stages' kernels: one entry a column.
#pragma once

#include <cstdint>

#include "pipeline/frame_workspace.h"

namespace clarivex {

/// Terms and keep factors (0 … 32767) of one row. Slack rows.
struct OverlayRow {
    const uint8_t* lumaTerms;
    const uint8_t* chromaTerms;  ///< U and V in turn
    const int16_t* keep;
};

/// Takes the 24-byte groups of a tile row apart.
///
/// columns  luma columns wanted; the row holds whole groups of 8 of them
OverlayRow UnpackTileRow(const uint8_t* groups, int32_t columns, OutputScratch& scratch);

/// Keep factors of interleaved chroma samples that share two columns: the mean of both columns' factors, twice.
const int16_t* MeanKeep(const OverlayRow& row, int32_t columns, OutputScratch& scratch);

}  // namespace clarivex
