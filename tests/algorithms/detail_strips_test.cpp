// The strip forms at every width and height, pinned, and one of them against a plain form that reads an untouched copy.
#include "algorithms/detail_strips.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "algorithms/detail_kernels.h"
#include "tests/support/crc32.h"
#include "tests/support/guarded_plane.h"

namespace clarivex {
namespace {

constexpr SharpenCoefficients crisp{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 5000, .wideExtra = 9000, .wideKnee = 60 << 13};
constexpr SharpenCoefficients crispColumns{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 20, .wideExtra = 35, .wideKnee = 3000};
constexpr SharpenCoefficients smoothing{
    .narrowBase = -5, .narrowExtra = 5, .narrowKnee = 60, .wideBase = -9000, .wideExtra = 30000, .wideKnee = 90 << 12};

constexpr int32_t stride = 64;

struct StripFilter {
    const char* name;
    void (*run)(const Plane& strip);
    bool alongRows;
    uint32_t digest;
};

// clang-format off
constexpr StripFilter filters[] = {
    {"narrow rows", [](const Plane& strip) { NarrowDetailRows(strip, crisp, false); }, true, 0x564c7828},
    {"smoothing rows", [](const Plane& strip) { NarrowDetailRows(strip, smoothing, true); }, true, 0x5737dbf8},
    {"knee rows", [](const Plane& strip) { KneeDetailRows(strip, crisp, RowDither::byRow); }, true, 0x50647413},
    {"smoothing knee rows", [](const Plane& strip) { KneeDetailRows(strip, smoothing, RowDither::checkerboard); }, true, 0x416c6f50},
    {"gated rows", [](const Plane& strip) { GatedDetailRows(strip, crisp, RowDither::checkerboard); }, true, 0x9d043223},
    {"smoothing gated rows", [](const Plane& strip) { GatedDetailRows(strip, smoothing, RowDither::byRow); }, true, 0x3fdbcfb7},
    {"narrow columns", [](const Plane& strip) { NarrowDetailColumns(strip, crisp); }, false, 0xbcef662d},
    {"gated columns", [](const Plane& strip) { GatedDetailColumns(strip, crispColumns); }, false, 0x51ab6062},
    {"knee columns", [](const Plane& strip) { KneeDetailColumns(strip, crispColumns); }, false, 0x64d5330a},
};
// clang-format on

/// Digest of a filtered plane with its spare columns and its spare row. Nothing else may have changed.
uint32_t ContinueDigest(uint32_t digest, const StripFilter& filter, int32_t width, int32_t height) {
    GuardedPlane plane(width, height, stride, 1, static_cast<uint32_t>(width * 31 + height));
    GuardedPlane around = plane;
    filter.run(plane.View());
    for (int32_t y = 0; y <= height; ++y) {
        digest = Crc32(&plane.At(0, y), stride, digest);
        std::copy_n(&plane.At(0, y), stride, &around.At(0, y));
    }
    EXPECT_TRUE(plane == around) << filter.name << ", " << width << " x " << height << ": guards";
    return digest;
}

TEST(DetailStrips, GiveThePinnedSamplesAtEveryWidthAndHeight) {
    for (const StripFilter& filter : filters) {
        uint32_t digest = 0;
        for (int32_t width = 1; width <= (filter.alongRows ? stride : stripSize); ++width)
            for (const int32_t height : {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 33}) {
                if (filter.alongRows && height > stripSize) continue;
                digest = ContinueDigest(digest, filter, width, height);
            }
        EXPECT_EQ(digest, filter.digest) << filter.name;
    }
}

TEST(DetailStrips, WorkInPlaceOnUnfilteredNeighboursUpToTheLastBlock) {
    GuardedPlane actual(45, 9, stride, 1, 3);
    const GuardedPlane before = actual;
    GuardedPlane expected = actual;
    for (int32_t y = 0; y < 9; ++y) {
        const auto at = [&](int32_t x) -> int32_t { return x < 0 ? before.At(1, y) : before.At(std::min(x, 44), y); };
        for (int32_t x = 45; x < 48; ++x) expected.At(x, y) = before.At(44, y);
        for (int32_t x = 0; x < 40; ++x)
            expected.At(x, y) =
                KneeDetail(before.At(x, y), NarrowMeasure(at(x - 1), at(x), at(x + 1)),
                           WideMeasure(at(x - 3), at(x - 2), at(x - 1), at(x), at(x + 1), at(x + 2), at(x + 3)),
                           MakeKneeGains(crisp), y % 2 == 0 ? 12 : 4);
    }
    KneeDetailRows(actual.View(), crisp, RowDither::byRow);
    EXPECT_TRUE(actual == expected) << FirstDifference(actual, expected);
}

}  // namespace
}  // namespace clarivex
