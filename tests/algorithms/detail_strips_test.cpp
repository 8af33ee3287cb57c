// The strip forms at every width and height, pinned.
#include "algorithms/detail_strips.h"

#include <gtest/gtest.h>

#include "tests/support/guarded_plane.h"

namespace clarivex {
namespace {

constexpr SharpenCoefficients crisp{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 5000, .wideExtra = 9000, .wideKnee = 60 << 13};
constexpr SharpenCoefficients crispColumns{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 20, .wideExtra = 35, .wideKnee = 3000};
constexpr SharpenCoefficients smoothing{
    .narrowBase = -5, .narrowExtra = 5, .narrowKnee = 60, .wideBase = -9000, .wideExtra = 30000, .wideKnee = 90 << 12};

struct StripFilter {
    const char* name;
    void (*run)(const Plane& strip);
    bool alongRows;
    uint32_t digest;
};

// clang-format off
constexpr StripFilter filters[] = {
    {"narrow rows", [](const Plane& strip) { NarrowDetailRows(strip, crisp); }, true, 0x564c7828},
    {"smoothing rows", [](const Plane& strip) { NarrowDetailRows(strip, smoothing); }, true, 0xd1381f86},
    {"knee rows", [](const Plane& strip) { KneeDetailRows(strip, crisp, RowDither::byRow); }, true, 0x50647413},
    {"smoothing knee rows", [](const Plane& strip) { KneeDetailRows(strip, smoothing, RowDither::checkerboard); }, true, 0x416c6f50},
    {"gated rows", [](const Plane& strip) { GatedDetailRows(strip, crisp, RowDither::checkerboard); }, true, 0x9d043223},
    {"smoothing gated rows", [](const Plane& strip) { GatedDetailRows(strip, smoothing, RowDither::byRow); }, true, 0x3fdbcfb7},
    {"narrow columns", [](const Plane& strip) { NarrowDetailColumns(strip, crisp); }, false, 0xbcef662d},
    {"gated columns", [](const Plane& strip) { GatedDetailColumns(strip, crispColumns); }, false, 0x51ab6062},
    {"knee columns", [](const Plane& strip) { KneeDetailColumns(strip, crispColumns); }, false, 0x64d5330a},
};
// clang-format on

TEST(DetailStrips, GiveThePinnedSamplesAtEveryWidthAndHeight) {
    for (const StripFilter& filter : filters)
        EXPECT_EQ(filter.alongRows ? DigestOfFiltered(filter.run, {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16})
                                   : DigestOfFiltered(filter.run, {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 33}, stripSize),
                  filter.digest)
            << filter.name;
}

}  // namespace
}  // namespace clarivex
