#include "overlay/overlay_tiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace clarivex {
namespace {

bool IsNeutral(const uint8_t* group) {
    return std::count(group, group + 8, 0) == 8 && std::count(group + 8, group + 16, 255) == 8 &&
           std::count(group + 16, group + 24, 0) == 8;
}

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

TEST(OverlayTiles, ClearReachesTheLastGroup) {
    OverlayTiles tiles;
    tiles.Resize(17, 9);
    for (int32_t y = 0; y < 9; ++y) std::fill_n(tiles.Group(0, y), tiles.Stride(), uint8_t{9});
    tiles.Clear();
    for (int32_t y = 0; y < 9; ++y)
        for (const int32_t x : {0, 8, 16}) EXPECT_TRUE(IsNeutral(tiles.Group(x, y))) << x << ", " << y;
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

TEST(OverlayTiles, ClearsTheGroupsOfARectangle) {
    OverlayTiles tiles;
    tiles.Resize(40, 4);
    std::fill_n(tiles.Group(0, 0), 4 * tiles.Stride(), uint8_t{9});
    tiles.ClearRectangle({15, 1, 17, 3});
    tiles.ClearRectangle({32, 3, 400, 100});
    tiles.ClearRectangle({8, 0, 8, 0});
    for (int32_t y = 0; y < 4; ++y)
        for (const int32_t x : {0, 8, 16, 24, 32}) {
            const bool inside = y == 1 || y == 2 ? x == 8 || x == 16 : y == 3 && x == 32;
            EXPECT_EQ(IsNeutral(tiles.Group(x, y)), inside) << x << ", " << y;
        }
}

}  // namespace
}  // namespace clarivex
