#include "overlay/overlay_tiles.h"

#include "tests/support/memory_count.h"
#include "tests/support/test.h"

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
