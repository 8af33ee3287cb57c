#include "pipeline/overlay_rows.h"

#include <cstring>

#include "overlay/overlay_tiles.h"

namespace clarivex {
namespace {

constexpr int32_t group = OverlayTiles::groupPixels;

int16_t KeepFactor(uint8_t keep) { return static_cast<int16_t>((keep << 8 | keep) >> 1); }

}  // namespace

OverlayRow UnpackTileRow(const uint8_t* groups, int32_t columns, OutputScratch& scratch) {
    uint8_t* luma = scratch.lumaTerms.Prepare(columns);
    uint8_t* chroma = scratch.chromaTerms.Prepare(columns);
    int16_t* keep = scratch.keep.Prepare(columns);
    for (int32_t x = 0; x < columns; x += group, groups += OverlayTiles::groupBytes) {
        std::memcpy(luma + x, groups, group);
        std::memcpy(chroma + x, groups + OverlayTiles::chromaOffset, group);
        for (int32_t i = 0; i < group; ++i) keep[x + i] = KeepFactor(groups[OverlayTiles::keepOffset + i]);
    }
    return {luma, chroma, keep};
}

const int16_t* MeanKeep(const OverlayRow& row, int32_t columns, OutputScratch& scratch) {
    int16_t* means = scratch.chromaKeep.Prepare(columns + 1);
    for (int32_t x = 0; x < columns; x += 2)
        means[x] = means[x + 1] = static_cast<int16_t>((row.keep[x] + row.keep[x + 1]) >> 1);
    return means;
}

}  // namespace clarivex
