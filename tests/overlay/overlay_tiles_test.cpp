#include "overlay/overlay_tiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>

#include "tests/support/memory_count.h"

namespace clarivex {
namespace {

TEST(OverlayTiles, TakesMemoryOnlyForAStoreAndForgetsItWithAnotherSize) {
    OverlayTiles tiles;
    EXPECT_EQ(tiles.Row(0), nullptr);
    {
        const MemoryCount memory;
        tiles.Resize(4096, 5);
        EXPECT_LE(MemoryCount::Bytes(), 1024U);
    }
    tiles.MarkRows(0, 5);
    EXPECT_EQ(tiles.Row(2), nullptr);  // there is no store
    tiles.Reallocate(16, 5);
    EXPECT_EQ(tiles.Stride(), 48);
    EXPECT_EQ(tiles.Row(4), tiles.Row(0) + 4 * 48);
    EXPECT_EQ(tiles.Row(5), nullptr);
    EXPECT_EQ(tiles.Row(-1), nullptr);
    tiles.Resize(4096, 5);
    EXPECT_NE(tiles.Row(2), nullptr);
    for (const auto& [width, height] : {std::pair{4096, 6}, {4095, 6}, {0, 4}}) {
        tiles.Resize(width, height);
        EXPECT_EQ(tiles.RowTable().size(), static_cast<size_t>(height));
        tiles.MarkRows(0, height);
        EXPECT_EQ(tiles.Row(2), nullptr);
        tiles.Reallocate(16, height);
    }
}

TEST(OverlayTiles, MarksRowsInsideTheTableOnly) {
    OverlayTiles tiles;
    tiles.Resize(8, 6);
    tiles.Reallocate(8, 6);
    tiles.MarkRows(-3, 1);
    tiles.MarkRows(5, 100);
    tiles.MarkRows(4, 2);
    EXPECT_TRUE(std::ranges::equal(tiles.RowTable(), std::array{0, -1, -1, -1, -1, 5}));
    EXPECT_NE(tiles.Row(5), nullptr);
    EXPECT_EQ(tiles.Row(1), nullptr);
    tiles.MarkAllRowsEmpty();
    EXPECT_EQ(tiles.Row(5), nullptr);
}

}  // namespace
}  // namespace clarivex
