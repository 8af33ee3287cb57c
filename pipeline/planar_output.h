// The output stage of YV12 and IYUV: luma with tone curve, noise, dither and overlay, chroma with its gain.
#pragma once

#include <cstdint>

#include "engine/row_sink.h"
#include "pipeline/output_inputs.h"
#include "pipeline/row_toner.h"

namespace clarivex {

/// Writes the three planes once each, luma as its rows come, and fills the margins right of the picture with black. The
/// third plane takes the U parameters, the second the V parameters, also for IYUV, which has them the other way round.
class PlanarOutput final : public RowSink {
public:
    /// target     planes of the same picture in the output buffer; margins are clipped to the stride of their row
    /// targetEnd  end of the output buffer; null where rows end with the picture: nothing is written behind them
    /// source     the picture's size and its chroma, which may lie in the input buffer and is read by Finish: of what both
    ///            sizes share, exactly the visible samples. The samples of its luma come by TakeLuma.
    /// inputs     what they refer to has to outlive the stage
    PlanarOutput(const ImagePlanes& target, const uint8_t* targetEnd, const PictureView& source,
                 const OutputStageInputs& inputs);

    /// An odd width is written as an even one where the target has room; its rows have one sample more then. Rows below
    /// the picture or the target are left out.
    void TakeLuma(int32_t y, const Plane& rows) override;

    /// Writes chroma, behind the last row of luma.
    void Finish();

private:
    void ToneLuma(int32_t y, const uint8_t* row);
    ptrdiff_t RowLength(const Plane& plane, const uint8_t* row) const;
    int32_t LumaColumns(const uint8_t* out) const;
    void WriteSecondPlane();
    void WriteThirdPlane();
    void WriteChromaRow(int32_t y, const uint8_t* in, uint8_t* out);
    void ToneChromaUnderOverlay(int32_t y);
    void FillMargin(const Plane& plane, int32_t y, int32_t firstColumn, uint8_t value) const;

    ImagePlanes target;
    const uint8_t* targetEnd;
    PictureView source;
    const KernelTable& kernels;
    OutputScratch& scratch;
    int32_t width;
    int32_t height;
    int32_t chromaWidth;
    OverlayRows overlay;
    RowToner toner;
    bool work;
};

}  // namespace clarivex
