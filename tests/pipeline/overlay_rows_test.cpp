#include "pipeline/overlay_rows.h"

#include <gtest/gtest.h>

#include "overlay/overlay_tiles.h"

namespace clarivex {
namespace {

TEST(UnpackTileRow, PutsTermsAndKeepFactorsInColumnOrder) {
    OverlayTiles tiles;
    tiles.Resize(19, 2);
    uint8_t* groups = tiles.Group(0, 1);
    for (int32_t i = 0; i < tiles.Stride(); ++i) groups[i] = static_cast<uint8_t>(i * 3 + 1);
    OutputScratch scratch;
    const OverlayRow row = UnpackTileRow(tiles.Row(1), 19, scratch);
    for (int32_t x = 0; x < 19; ++x) {
        const int32_t group = x / 8 * 24;
        const int32_t keep = groups[group + 8 + x % 8];
        ASSERT_EQ(row.lumaTerms[x], groups[group + x % 8]) << x;
        ASSERT_EQ(row.chromaTerms[x], groups[group + 16 + x % 8]) << x;
        ASSERT_EQ(row.keep[x], (keep * 257) >> 1) << x;
    }
}

TEST(MeanKeep, GivesBothSamplesOfAPairTheMeanOfTheirColumns) {
    OverlayTiles tiles;
    tiles.Resize(8, 1);
    tiles.Clear();
    tiles.Group(0, 0)[OverlayTiles::keepOffset + 1] = 0;
    OutputScratch scratch;
    const OverlayRow row = UnpackTileRow(tiles.Row(0), 8, scratch);
    const int16_t* means = MeanKeep(row, 8, scratch);
    EXPECT_EQ(means[0], 16383);
    EXPECT_EQ(means[1], 16383);
    EXPECT_EQ(means[2], 32767);
    EXPECT_EQ(means[7], 32767);
}

}  // namespace
}  // namespace clarivex
