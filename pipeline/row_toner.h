// What both output stages do to samples, row by row: tone curve, chroma gain, noise, dither and overlay.
#pragma once

#include <array>
#include <cstdint>

#include "pipeline/column_patterns.h"
#include "pipeline/output_inputs.h"
#include "pipeline/overlay_rows.h"

namespace clarivex {

/// What an output stage adds before it rounds, by column, for even and odd rows: sixteenths in rows of video, eighths
/// under the overlay, where luma has the same in all pictures.
struct StageDithers {
    Columns4 luma[2];
    Columns4 chroma[2];
    Columns4 overlayChroma[2];
    bool noisyChroma;  ///< rows of video have noise on chroma as well
};

/// Tones rows of one frame. y is the row of luma that a row belongs to; out may not overlap in.
class RowToner {
public:
    /// inputs  have to outlive the toner
    RowToner(const OutputStageInputs& inputs, const StageDithers& dithers);

    /// Rows of video. Chroma alternates between the gains of U and V by column, in pictures of either kind.
    void Luma(int32_t y, const uint8_t* in, uint8_t* out, int32_t columns) const;
    void Chroma(int32_t y, const uint8_t* in, uint8_t* out, int32_t samples) const;

    /// A packed row of video, with noise on its chroma: U of a row and of the neighbour that it leans to, then V of both.
    void Packed(int32_t y, const uint8_t* luma, const uint8_t* const* chroma, uint8_t* out, int32_t columns) const;

    /// Rows under the overlay; chroma samples of U and V in turn.
    void LumaUnder(const OverlayTerms& overlay, int32_t y, const uint8_t* in, uint8_t* out, int32_t columns) const;
    void ChromaUnder(const OverlayTerms& overlay, int32_t y, const uint8_t* in, uint8_t* out, int32_t samples) const;

private:
    /// Patterns of rows of one parity.
    struct RowPatterns {
        ColumnPattern luma;
        ColumnPattern chroma;
        ColumnPattern overlayLuma;
        ColumnPattern overlayChroma;
    };

    const RowPatterns& PatternsOf(int32_t y) const { return patterns[static_cast<size_t>(y % 2)]; }

    const KernelTable& kernels;
    const NoiseTable& noise;
    bool noisyChroma;
    LumaCurve curve;
    alignas(64) std::array<uint8_t, lumaTableBytes> curveTable;
    ColumnPattern chromaGains;
    RowPatterns patterns[2];
    ColumnPattern noisyLumaOffset;
    ColumnPattern noisyChromaOffset;
};

}  // namespace clarivex
