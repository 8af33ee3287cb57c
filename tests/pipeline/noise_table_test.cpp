#include "pipeline/noise_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "tests/support/crc32.h"

namespace clarivex {
namespace {

constexpr size_t tableBytes = 512 * 256;

TEST(NoiseTable, DrawsTheSameBytesInEveryBuildAndSaturatesAboveZero) {
    const NoiseGenerator generator;
    NoiseTable table(generator);
    const auto ends = [&](float level) {
        table.Build(level);
        const auto [least, most] = std::minmax_element(table.bytes.data, table.bytes.data + tableBytes);
        return std::pair<int, int>(*least, *most);
    };
    EXPECT_EQ(ends(0.0F), std::pair(128, 128));
    for (const float level : {1000.0F, std::numeric_limits<float>::infinity()})
        EXPECT_EQ(ends(level), std::pair(1, 255));
    table.Build(0.75F);
    EXPECT_EQ(Crc32(table.bytes), 0x120CAC1FU);
    table.Build(3.0F);
    EXPECT_EQ(Crc32(table.bytes), 0x06A1FCA1U);
}

TEST(NoiseGenerator, MovesEachOffsetBy32To221AndWraps) {
    NoiseGenerator generator;
    NoiseOffsets last = generator.Advance();
    EXPECT_EQ(last.x, 117);
    EXPECT_EQ(last.y, 61);
    int32_t least = 1000, most = 0, wraps = 0;
    for (int i = 0; i < 20'000'000; ++i) {  // far enough to pass 2³¹
        const NoiseOffsets next = generator.Advance();
        const auto step = static_cast<int32_t>(static_cast<uint32_t>(next.x) - static_cast<uint32_t>(last.x));
        least = std::min(least, step);
        most = std::max(most, step);
        wraps += next.x < last.x ? 1 : 0;
        last = next;
    }
    EXPECT_EQ(least, 32);
    EXPECT_EQ(most, 221);
    EXPECT_EQ(wraps, 1);
}

}  // namespace
}  // namespace clarivex
