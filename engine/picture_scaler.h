// Whole pictures enlarged along one axis, by three halves or, along the rows, by two: luma through the strip scalers,
// chroma by interpolation.
#pragma once

#include <cstdint>

#include "algorithms/readable_row.h"
#include "algorithms/working_image.h"
#include "engine/column_scaler.h"
#include "engine/row_scaler.h"

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
    /// between    receives what the rows pass makes; as wide as the scale makes the source, and as high as the source
    /// rowStages  without a stage across the rows
    void ScaleLumaBothAxes(const ImagePlanes& target, const WorkingImage& between, const SourceImage& source,
                           const RowStages& rowStages, const ThreeHalvesTaps& columnTaps);

private:
    void ShowFrameLeftOf(const Plane& part, const Plane& whole) const;
    void ScaleChromaAlongRows(const Plane& target, const PlaneView& source, AxisScale scale, bool chromaOdd);

    ScalerScratch& scratch;
    const KernelTable& kernels;
    const PlaneView* splitFrame;
    bool splitView;
};

}  // namespace clarivex
