#include "engine/picture_scaler.h"

#include <algorithm>

#include "engine/chroma_scalers.h"

namespace clarivex {
namespace {

Plane RightOf(const Plane& plane, int32_t columns) {
    return {plane.data + columns, plane.width - columns, plane.height, plane.stride};
}

/// Source columns left of the part that a split view shows.
int32_t SplitOffset(const Plane& target, const Plane& source, int32_t shift, int32_t step) {
    const int32_t narrower = std::min(target.width, source.width);
    return std::max(((narrower / 2 - 4) >> shift) * step, 0);
}

}  // namespace

void PictureScaler::ScaleHorizontal(const ImagePlanes& target, const SourceImage& source, const RowStages& stages,
                                    bool chromaOdd, uint32_t planes) {
    if ((planes & lumaPlane) != 0) {
        const Plane& from = source.planes.luma;
        // The caller's planes may be larger than what three halves of the source fill.
        const Plane to{target.luma.data, (3 * from.width) >> 1, from.height, target.luma.stride};
        const int32_t offset = splitView ? SplitOffset(to, from, 5, 16) : 0;
        ScaleLumaStrips(RightOf(to, 3 * offset), RightOf(from, 2 * offset), source.end, stages, scratch.rows, kernels);
    }
    if ((planes & secondPlane) != 0)
        ScaleChromaRows(target.second, source.planes.second, chromaOdd, scratch.chroma, kernels);
    if ((planes & thirdPlane) != 0)
        ScaleChromaRows(target.third, source.planes.third, chromaOdd, scratch.chroma, kernels);
}

void PictureScaler::ScaleHorizontalPlane(WorkingImage& target, const SourceImage& source, const RowStages& stages,
                                         bool chromaOdd, uint32_t planes) {
    const Plane& luma = source.planes.luma;
    target.Resize((3 * luma.width) >> 1, luma.height);
    ScaleHorizontal(target.Planes(), source, stages, chromaOdd, planes);
}

void PictureScaler::ScaleVertical(const ImagePlanes& target, const SourceImage& source, const ColumnStages& stages,
                                  uint32_t planes) {
    if ((planes & lumaPlane) != 0) {
        const int32_t offset = splitView ? SplitOffset(target.luma, source.planes.luma, 4, 16) : 0;
        ScaleLumaStrips(RightOf(target.luma, offset), RightOf(source.planes.luma, offset), source.end, stages,
                        scratch.columns, kernels);
    }
    if ((planes & secondPlane) != 0)
        ScaleChromaColumns(target.second, source.planes.second, source.end, scratch.chroma, kernels);
    if ((planes & thirdPlane) != 0)
        ScaleChromaColumns(target.third, source.planes.third, source.end, scratch.chroma, kernels);
}

void PictureScaler::ScaleVerticalFirst(WorkingImage& target, const SourceImage& source, const ColumnStages& stages,
                                       uint32_t planes) {
    const Plane& luma = source.planes.luma;
    target.Resize(luma.width, (3 * luma.height) >> 1);
    ScaleVertical(target.Planes(), source, stages, planes);
}

}  // namespace clarivex
