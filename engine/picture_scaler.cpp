#include "engine/picture_scaler.h"

#include <algorithm>

#include "algorithms/detail_arithmetic.h"
#include "engine/chroma_scalers.h"
#include "engine/sleeping/chroma_doubling.h"

namespace clarivex {
namespace {

/// The two planes of a pass, without the columns that a split view leaves out.
struct PassPlanes {
    Plane target;
    SourcePlane source;
};

/// Half the picture's width less 4 samples, rounded down to a multiple of `unit`.
int32_t SplitColumns(const Plane& target, const PlaneView& source, int32_t unit) {
    const int32_t narrower = std::min(target.width, source.width);
    return std::max((narrower / 2 - 4) & ~(unit - 1), 0);
}

PassPlanes AlongRows(const Plane& target, const SourcePlane& source, AxisScale scale, bool splitView) {
    // The caller's planes may be larger than what the enlarged source fills.
    const int32_t rows = std::min(target.height, source.plane.height);
    const Plane filled{target.data, Scaled(source.plane.width, scale), rows, target.stride};
    const int32_t unit = scale == AxisScale::twofold ? 16 : 32;
    const int32_t left = splitView ? SplitColumns(filled, source.plane, unit) : 0;
    return {RightOf(filled, Scaled(left, scale)), source.RightOf(left)};
}

PassPlanes DownColumns(const Plane& target, const SourcePlane& source, bool splitView) {
    const int32_t offset = splitView ? SplitColumns(target, source.plane, 16) : 0;
    return {RightOf(target, offset), source.RightOf(offset)};
}

}  // namespace

/// Fills the columns of `whole` that stand left of `part`, which lies in it.
void PictureScaler::ShowFrameLeftOf(const Plane& part, const Plane& whole) const {
    constexpr uint8_t black = 16;
    const auto columns = static_cast<int32_t>(part.data - whole.data);
    for (int32_t y = 0; y < whole.height && columns > 0; ++y) {
        const int32_t shared = y < splitFrame->height ? std::min(columns, splitFrame->width) : 0;
        std::fill_n(whole.Row(y) + shared, columns - shared, black);
        if (shared > 0) std::copy_n(splitFrame->Row(y), shared, whole.Row(y));
    }
}

void PictureScaler::ScaleHorizontal(const ImagePlanes& target, const SourceImage& source, const RowStages& stages,
                                    bool chromaOdd, uint32_t planes) {
    if ((planes & lumaPlane) != 0) {
        const PassPlanes luma = AlongRows(target.luma, source.Luma(), stages.scale, splitView);
        ShowFrameLeftOf(luma.target, target.luma);
        ScaleLumaStrips(luma.target, luma.source, stages, scratch.rows, kernels);
    }
    if ((planes & secondPlane) != 0) ScaleChromaAlongRows(target.second, source.planes.second, stages.scale, chromaOdd);
    if ((planes & thirdPlane) != 0) ScaleChromaAlongRows(target.third, source.planes.third, stages.scale, chromaOdd);
}

void PictureScaler::ScaleChromaAlongRows(const Plane& target, const PlaneView& source, AxisScale scale,
                                         bool chromaOdd) {
    if (scale == AxisScale::twofold)
        DoubleChromaRows(target, source, chromaOdd, scratch.chroma, kernels);
    else
        ScaleChromaRows(target, source, chromaOdd, scratch.chroma, kernels);
}

void PictureScaler::ScaleVertical(const ImagePlanes& target, const SourceImage& source, const ColumnStages& stages,
                                  uint32_t planes) {
    if ((planes & lumaPlane) != 0) {
        const PassPlanes luma = DownColumns(target.luma, source.Luma(), splitView);
        ShowFrameLeftOf(luma.target, target.luma);
        ScaleLumaStrips(luma.target, luma.source, stages, scratch.columns, kernels);
    }
    if ((planes & secondPlane) != 0)
        ScaleChromaColumns(target.second, source.planes.second, source.end, scratch.chroma, kernels);
    if ((planes & thirdPlane) != 0)
        ScaleChromaColumns(target.third, source.planes.third, source.end, scratch.chroma, kernels);
}

void PictureScaler::ScaleLumaBothAxes(const Plane& target, const SourcePlane& source, const RowStages& rowStages,
                                      const ThreeHalvesTaps& columnTaps) {
    ScaleStrips({target, target.height, nullptr}, source, rowStages, columnTaps);
}

void PictureScaler::ScaleLumaBothAxes(RowSink& sink, const FrameSize& size, const SourcePlane& source,
                                      const RowStages& rowStages, const ThreeHalvesTaps& columnTaps) {
    const Plane rows = RowsIn(scratch.finished, size.width, sinkRows);
    ScaleStrips({rows, size.height, &sink}, source, rowStages, columnTaps);
}

void PictureScaler::ScaleStrips(const ColumnTarget& target, const SourcePlane& source, const RowStages& rowStages,
                                const ThreeHalvesTaps& columnTaps) {
    const int32_t height = source.plane.height;
    const Plane between = RowsIn(scratch.between, Scaled(source.plane.width, rowStages.scale), BandRows(kernels));
    const uint8_t* betweenEnd = between.Row(between.height);
    const PassPlanes rows = AlongRows(between, source, rowStages.scale, splitView);
    const PassPlanes columns = DownColumns(target.plane, {between, betweenEnd, {}}, splitView);
    ShowFrameLeftOf(columns.target, target.plane);  // the rows pass makes at least what is right of that
    RowScaler rowScaler(rows.target, rows.source, rowStages, scratch.rows, kernels);
    ColumnScaler columnScaler(columns.target, columns.source, {height, target.height}, columnTaps, scratch.columns,
                              kernels);
    for (int32_t y = 0; y < height; y += between.height) {
        rowScaler.ScaleBand(y);
        columnScaler.Advance(std::min(y + between.height, height), target.sink);
    }
}

}  // namespace clarivex
