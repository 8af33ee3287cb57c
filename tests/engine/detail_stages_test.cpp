// The stages that the start-up values leave off, in place over planes of every width, pinned.
#include "engine/detail_stages.h"

#include <gtest/gtest.h>

#include "engine/cross_stage.h"
#include "tests/support/guarded_plane.h"
#include "tests/support/sharpen_curve.h"

namespace clarivex {
namespace {

void RunCrossStage(const Plane& plane) {
    uint8_t line[64];
    CrossStage stage({5, 9, 250}, line);
    for (int32_t y = 0; y < plane.height; y += stripSize) stage.Run(plane, y);
}

struct Stage {
    const char* name;
    void (*run)(const Plane& plane);
    bool inStrips;
    uint32_t digest;
};

// clang-format off
constexpr Stage stages[] = {
    {"usual limits", [](const Plane& strip) { LimitEdgesSimple(strip, {}); }, true, 0x82c8badb},
    {"far limits", [](const Plane& strip) { LimitEdgesSimple(strip, {15, 90, 100}); }, true, 0xae88827e},
    {"near limits", [](const Plane& strip) { LimitEdgesSimple(strip, {30, 0, 20}); }, true, 0xbe83f1b0},
    {"booster", [](const Plane& strip) { BoostSmallSignals(strip, {5, 90}); }, true, 0x8ac7b19c},
    {"across the rows", RunCrossStage, false, 0x354523f7},
    {"across the columns", [](const Plane& plane) { CrossColumns(plane, {5, 9, 250}); }, false, 0xbff6405b},
};
// clang-format on

TEST(DetailStages, GiveThePinnedSamplesAtEveryWidthAndHeight) {
    for (const Stage& stage : stages)
        EXPECT_EQ(stage.inStrips ? DigestOfFiltered(stage.run, {1, 3, stripSize})
                                 : DigestOfFiltered(stage.run, {1, 2, 3, 15, 16, 17, 18, 31, 32, 33, 34, 49, 66}),
                  stage.digest)
            << stage.name;
}

TEST(DetailStages, DeriveGainsInUnitsOfFiveAndLimitDeadZones) {
    EXPECT_EQ(DeriveBoosterGains(10, 30).gain, 7);
    EXPECT_EQ(DeriveBoosterGains(10, 30).deadZone, 75);
    EXPECT_EQ(DeriveBoosterGains(2'000'000, 2'000'000).deadZone, 0x3FFF >> 2);
    EXPECT_EQ(DeriveCrossGains(Curve(-500, 500, -3)).deadZone, 15);
    EXPECT_EQ(DeriveCrossGains(Curve(0, 1, 1e6F)).deadZone, 0x3FFF);
    // The extra gain is what the unrounded base leaves: 5 · (2^0.6 − 1) = 2.58 and 5 · (2^0.9 − 1) − 2.58 = 1.75.
    EXPECT_EQ(DeriveCrossGains(Curve(0.6F, 0.3F, 0)).base, 3);
    EXPECT_EQ(DeriveCrossGains(Curve(0.6F, 0.3F, 0)).extra, 2);
}

}  // namespace
}  // namespace clarivex
