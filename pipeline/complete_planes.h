// Fills what the engine has not written of a picture, so that left-over memory is never shown.
#pragma once

#include <cstdint>

#include "engine/row_sink.h"
#include "runtime/planes.h"

namespace clarivex {

// Samples outside the written part of a picture become the source's at the same place, and black where the source has none.
// In a picture whose columns were enlarged, the few that rounding its width added repeat the last one before them, and so
// does the spare column behind an odd width of luma.

/// Completes rows of luma.
struct LumaCompletion {
    FrameSize size;     ///< of the picture
    FrameSize written;  ///< luma samples from the upper left that the engine wrote, 0 × 0 for none
    PlaneView source;

    /// rows  row y of the picture and those behind it, one sample wider where its width is odd; completed in place
    void Complete(int32_t y, const Plane& rows) const;
};

/// Completes rows before they go on to the next sink.
class CompletingSink final : public RowSink {
public:
    /// next  has to outlive the sink
    CompletingSink(const LumaCompletion& completion, RowSink& next) : completion(completion), next(next) {}

    void TakeLuma(int32_t y, const Plane& rows) override;

    /// Gives the rows that nobody wrote, behind the last one that was.
    ///
    /// row  room for the picture's width and one sample more
    void Finish(uint8_t* row);

private:
    LumaCompletion completion;
    RowSink& next;
};

/// Completes chroma of a picture whose luma is as told.
///
/// picture  planes of the picture's size, completed in place
void CompleteChroma(const ImagePlanes& picture, const PictureView& source, const FrameSize& written);

/// Puts a packed source at the upper left of a target of packed rows, over black. Sizes in samples, strides in bytes; whole
/// pairs are read and written, and nothing behind a row's last one.
void ShowPackedSource(const Plane& target, const PlaneView& source);

}  // namespace clarivex
