#include "overlay/overlay_tiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>

namespace clarivex {
namespace {

TEST(OverlayTiles, ForgetsItsStoreWithAnotherSize) {
    OverlayTiles tiles;
    for (const auto& [width, height] : {std::pair{4096, 5}, {4096, 6}, {4095, 6}, {0, 4}}) {
        tiles.Resize(width, height);
        tiles.MarkRows(0, height);
        EXPECT_EQ(tiles.Row(2), nullptr) << "there is no store";
        tiles.Reallocate(16, height);
        EXPECT_EQ(tiles.Row(3), tiles.Row(0) + 3 * 48);
    }
}

TEST(OverlayTiles, MarksRowsInsideTheTableOnly) {
    OverlayTiles tiles;
    tiles.Resize(8, 6);
    tiles.Reallocate(8, 6);
    tiles.MarkRows(-3, 1);
    tiles.MarkRows(5, 100);
    tiles.MarkRows(4, 2);
    for (int32_t row = -1; row <= 6; ++row)
        EXPECT_EQ(tiles.Row(row), row == 0 || row == 5 ? tiles.Group(0, row) : nullptr) << row;
    tiles.MarkAllRowsEmpty();
    for (const int32_t row : {-1, 5, 6}) EXPECT_EQ(tiles.Row(row), nullptr);
}

}  // namespace
}  // namespace clarivex
