// The output stage of YUY2: writes every byte of the picture once, with tone curve, chroma gain, noise, dither and overlay.
#pragma once

#include <array>
#include <cstdint>

#include "engine/row_sink.h"
#include "pipeline/output_inputs.h"
#include "pipeline/row_toner.h"

namespace clarivex {

/// Interleaves luma, as its rows come, with chroma to Y0 U Y1 V, chroma widened to every row by a quarter of its neighbour row, and
/// blackens what is right of the picture and the row below it.
class PackedOutput final : public RowSink {
public:
    /// target     width and height in samples, stride in bytes; rows × stride bytes may be written, none behind them. A
    ///            target wider or higher than the source keeps what it held beyond the margin and the black row.
    /// targetEnd  end of the output buffer, which may come before the last row's stride ends; null where rows end with
    ///            the picture's last pair, whatever their stride.
    /// source     the picture's size and its chroma, third plane U, second plane V, there before the first row of luma
    ///            comes by TakeLuma. An empty one writes nothing.
    /// inputs     what they refer to has to outlive the stage
    PackedOutput(const Plane& target, const uint8_t* targetEnd, const PictureView& source,
                 const OutputStageInputs& inputs);

    /// A row of an odd width has one sample more. Rows below the picture or the target are left out.
    void TakeLuma(int32_t y, const Plane& rows) override;

    /// Writes what is below the picture, behind its last row.
    void Finish();

private:
    /// The chroma rows of a row of luma as the kernels take them: U and its neighbour, V and its neighbour.
    using ChromaRows = std::array<const uint8_t*, 4>;
    ChromaRows ChromaOf(int32_t y) const;
    void TakeRow(int32_t y, const uint8_t* row);
    void ToneUnderOverlay(int32_t y, const uint8_t* luma);
    void Tone(int32_t y, const uint8_t* luma);
    int32_t RowBytes(int32_t y) const;
    void Store(int32_t y, const uint8_t* luma, const uint8_t* chromaRow);
    void FillBlack(int32_t y, int32_t pairs, int32_t firstByte);
    void FillMargin(int32_t y);

    Plane target;
    const uint8_t* targetEnd;
    PictureView source;
    const KernelTable& kernels;
    int32_t width;
    int32_t height;
    int32_t rowLength;  // in bytes
    OverlayRows overlay;
    RowToner toner;
    bool work;
    uint8_t* chroma;
    uint8_t* tonedLuma;
    uint8_t* tonedChroma;
};

}  // namespace clarivex
