#include "pipeline/overlay_rows.h"

#include <cstring>

namespace clarivex {
namespace {

constexpr int32_t group = OverlayTiles::groupPixels;

int16_t KeepFactor(uint8_t keep) { return static_cast<int16_t>((keep << 8 | keep) >> 1); }

}  // namespace

OverlayRows::OverlayRows(const OverlayTiles& tiles, int32_t columns, OutputScratch& scratch)
    : tiles(tiles),
      columns(columns),
      scratch(scratch),
      wideEnough(columns * (OverlayTiles::groupBytes / group) <= tiles.Stride()) {}

OverlayTerms OverlayRows::Terms(int32_t y) const {
    const uint8_t* groups = tiles.Row(y);
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

OverlayTerms OverlayRows::ChromaTerms(int32_t y) const {
    OverlayTerms terms = Terms(y);
    int16_t* means = scratch.chromaKeep.Prepare(columns);
    for (int32_t x = 0; x < columns; x += 2)
        means[x] = means[x + 1] = static_cast<int16_t>((terms.keep[x] + terms.keep[x + 1]) >> 1);
    terms.keep = means;
    return terms;
}

}  // namespace clarivex
