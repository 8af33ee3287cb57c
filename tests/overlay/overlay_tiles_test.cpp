#include "overlay/overlay_tiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace clarivex {
namespace {

TEST(OverlayTiles, ResizeMarksEveryRowAsItsOwn) {
    OverlayTiles tiles;
    EXPECT_EQ(tiles.Row(0), nullptr);
    tiles.Resize(16, 5);
    EXPECT_EQ(tiles.Stride(), 48);
    EXPECT_EQ(tiles.Row(4), tiles.Row(0) + 4 * 48);
    EXPECT_EQ(tiles.Row(5), nullptr);
    EXPECT_EQ(tiles.Row(-1), nullptr);
    tiles.Group(9, 2)[1] = 200;
    tiles.MarkAllRowsEmpty();
    tiles.Resize(16, 5);  // only renews the table
    ASSERT_NE(tiles.Row(2), nullptr);
    EXPECT_EQ(tiles.Row(2)[24 + 1], 200);
    tiles.Resize(0, 4);
    tiles.Clear();
    EXPECT_EQ(tiles.Row(4), nullptr);
}

TEST(OverlayTiles, MarksRowsInsideTheTableOnly) {
    OverlayTiles tiles;
    tiles.Resize(8, 6);
    tiles.MarkAllRowsEmpty();
    tiles.MarkRows(-3, 1);
    tiles.MarkRows(5, 100);
    tiles.MarkRows(4, 2);
    const auto table = tiles.RowTable();
    EXPECT_TRUE(std::ranges::equal(table, std::array{0, -1, -1, -1, -1, 5}));
    EXPECT_NE(tiles.Row(5), nullptr);
    EXPECT_EQ(tiles.Row(1), nullptr);
}

TEST(OverlayTiles, ShrunkStoreKeepsPictureSizeAndGivesNoRows) {
    OverlayTiles tiles;
    tiles.Resize(64, 8);
    tiles.Reallocate(0, 0);
    EXPECT_EQ(tiles.Stride(), 0);
    EXPECT_EQ(tiles.Width(), 64);
    EXPECT_EQ(tiles.RowTable().size(), 8U);
    EXPECT_EQ(tiles.Row(0), nullptr);
    tiles.Clear();  // nothing of the picture lies in the store
    tiles.Reallocate(64, 8);
    EXPECT_NE(tiles.Row(7), nullptr);
}

}  // namespace
}  // namespace clarivex
