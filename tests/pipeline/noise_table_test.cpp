#include "pipeline/noise_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "tests/support/crc32.h"

namespace clarivex {
namespace {

constexpr size_t tableBytes = 512 * 256;

TEST(NoiseTable, DrawsTheSameBytesInEveryBuild) {
    NoiseTable table;
    EXPECT_EQ(std::count(table.bytes.data, table.bytes.data + tableBytes, 128), ptrdiff_t{tableBytes});
    table.Build(0.75F);
    EXPECT_EQ(Crc32(table.bytes), 0x120CAC1FU);
    table.Build(3.0F);
    EXPECT_EQ(Crc32(table.bytes), 0x06A1FCA1U);
}

TEST(NoiseTable, SaturatesStrongNoiseAboveZero) {
    for (const float level : {1000.0F, std::numeric_limits<float>::infinity()}) {
        NoiseTable table;
        table.Build(level);
        const auto [least, most] = std::minmax_element(table.bytes.data, table.bytes.data + tableBytes);
        EXPECT_EQ(*least, 1);
        EXPECT_EQ(*most, 255);
    }
}

TEST(NoiseTable, MovesEachOffsetBy32To221AndWrapsWhateverWasBuilt) {
    NoiseTable table;
    for (const float level : {0.75F, 0.75F, 3.0F, 0.75F}) table.Build(level);
    table.Advance();
    EXPECT_EQ(table.offsetX, 117);
    EXPECT_EQ(table.offsetY, 61);
    table.offsetX = std::numeric_limits<int32_t>::max();
    int32_t least = 1000, most = 0;
    for (int i = 0; i < 10000; ++i) {
        const auto before = static_cast<uint32_t>(table.offsetX);
        table.Advance();
        const auto step = static_cast<int32_t>(static_cast<uint32_t>(table.offsetX) - before);
        least = std::min(least, step);
        most = std::max(most, step);
    }
    EXPECT_EQ(least, 32);
    EXPECT_EQ(most, 221);
}

}  // namespace
}  // namespace clarivex
