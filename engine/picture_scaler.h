// Whole pictures enlarged along one axis, by three halves or, along the rows, by two: luma through the strip scalers,
// chroma by interpolation.
#pragma once

#include <cstdint>

#include "algorithms/readable_row.h"
#include "algorithms/working_image.h"
#include "engine/column_scaler.h"
#include "engine/row_scaler.h"
#include "engine/row_sink.h"

namespace clarivex {

/// Bits of a plane mask.
constexpr uint32_t lumaPlane = 1;
constexpr uint32_t secondPlane = 2;
constexpr uint32_t thirdPlane = 4;
constexpr uint32_t allPlanes = 7;

/// Working memory of both scalers and of chroma, kept between frames.
struct ScalerScratch {
    RowScratch rows;
    ColumnScratch columns;
    SlackRow<uint8_t> between;   // luma from one pass to the other
    SlackRow<uint8_t> finished;  // and on to a sink
    SlackRow<uint8_t> chroma;
};

class PictureScaler {
public:
    /// splitFrame  null enlarges whole pictures. Otherwise only the right part of the luma plane is enlarged, and columns
    ///             that this leaves are those of the split frame at the same place, black where it has none.
    PictureScaler(ScalerScratch& scratch, const KernelTable& kernels, const PlaneView* splitFrame)
        : scratch(scratch), kernels(kernels), splitFrame(splitFrame), splitView(splitFrame != nullptr) {}

    /// Along the rows by stages.scale, the planes named by `planes`, into planes sized by the caller.
    void ScaleHorizontal(const ImagePlanes& target, const SourceImage& source, const RowStages& stages, bool chromaOdd,
                         uint32_t planes);

    /// Down the columns, the planes named by `planes`, into planes sized by the caller.
    void ScaleVertical(const ImagePlanes& target, const SourceImage& source, const ColumnStages& stages,
                       uint32_t planes);

    /// Luma on both axes, strip after strip, so that the pass down the columns finds its rows in the cache.
    ///
    /// rowStages  without a stage across the rows
    void ScaleLumaBothAxes(const Plane& target, const SourcePlane& source, const RowStages& rowStages,
                           const ThreeHalvesTaps& columnTaps);

    /// The same into a sink, of whole pictures.
    ///
    /// size  of the enlarged picture
    void ScaleLumaBothAxes(RowSink& sink, const FrameSize& size, const SourcePlane& source, const RowStages& rowStages,
                           const ThreeHalvesTaps& columnTaps);

private:
    struct ColumnTarget {
        Plane plane;
        int32_t height;  // of the picture
        RowSink* sink;
    };

    void ScaleStrips(const ColumnTarget& target, const SourcePlane& source, const RowStages& rowStages,
                     const ThreeHalvesTaps& columnTaps);
    void ShowFrameLeftOf(const Plane& part, const Plane& whole) const;
    void ScaleChromaAlongRows(const Plane& target, const PlaneView& source, AxisScale scale, bool chromaOdd);

    ScalerScratch& scratch;
    const KernelTable& kernels;
    const PlaneView* splitFrame;
    bool splitView;
};

}  // namespace clarivex
