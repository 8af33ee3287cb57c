// The stages that work in place, over planes of every width and many heights, pinned: the detail kernels in strips and
// what the start-up values leave off.
#include "engine/detail_stages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "algorithms/edge_sharpeners.h"
#include "engine/cross_stage.h"
#include "tests/support/crc32.h"
#include "tests/support/sharpen_curve.h"

namespace clarivex {
namespace {

constexpr SharpenCoefficients crisp{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 5000, .wideExtra = 9000, .wideKnee = 60 << 13};
constexpr SharpenCoefficients crispColumns{
    .narrowBase = 7, .narrowExtra = 9, .narrowKnee = 300, .wideBase = 20, .wideExtra = 35, .wideKnee = 3000};
constexpr SharpenCoefficients smoothing{
    .narrowBase = -5, .narrowExtra = 5, .narrowKnee = 60, .wideBase = -9000, .wideExtra = 30000, .wideKnee = 90 << 12};
/// The wide base gain leaves 16 bits: the rest of it moves into the extra gain.
constexpr SharpenCoefficients strong{.narrowBase = 1 << 20,
                                     .narrowExtra = 2000,
                                     .narrowKnee = 40,
                                     .wideBase = 40000,
                                     .wideExtra = -20000,
                                     .wideKnee = 20 << 13};

void RunScalarForm(const Plane& plane) {
    SharpenRowsKnee(plane, Curve(1, 0.5F, 8), Curve(0.5F, 0.5F, 20), true, RowDither::byRow, nullptr);
}

void RunCrossStage(const Plane& plane) {
    uint8_t line[64];
    CrossStage stage({5, 9, 250}, line);
    for (int32_t y = 0; y < plane.height; y += stripSize) stage.Run(plane, y);
}

enum class Form { stripOfRows, stripOfColumns, plane };

struct Stage {
    const char* name;
    void (*run)(const Plane& plane);
    Form form;
    uint32_t digest;
};

// clang-format off
constexpr Stage stages[] = {
    {"narrow rows", [](const Plane& strip) { NarrowDetailRows(strip, crisp); }, Form::stripOfRows, 0xea644893},
    {"smoothing rows", [](const Plane& strip) { NarrowDetailRows(strip, smoothing); }, Form::stripOfRows, 0x6e95e1a5},
    {"knee rows", [](const Plane& strip) { KneeDetailRows(strip, crisp, RowDither::byRow); }, Form::stripOfRows, 0xc0b626dc},
    {"smoothing knee rows", [](const Plane& strip) { KneeDetailRows(strip, smoothing, RowDither::checkerboard); }, Form::stripOfRows, 0xf2698464},
    {"strong knee rows", [](const Plane& strip) { KneeDetailRows(strip, strong, RowDither::byRow); }, Form::stripOfRows, 0x6a8ba72f},
    {"gated rows", [](const Plane& strip) { GatedDetailRows(strip, crisp, RowDither::checkerboard); }, Form::stripOfRows, 0xd24bc049},
    {"smoothing gated rows", [](const Plane& strip) { GatedDetailRows(strip, smoothing, RowDither::byRow); }, Form::stripOfRows, 0x9d695f24},
    {"strong gated rows", [](const Plane& strip) { GatedDetailRows(strip, strong, RowDither::byRow); }, Form::stripOfRows, 0x3dcd4764},
    {"knee rows, scalar form", RunScalarForm, Form::plane, 0x0bdcbdb8},
    {"narrow columns", [](const Plane& strip) { NarrowDetailColumns(strip, crisp); }, Form::stripOfColumns, 0x22266159},
    {"gated columns", [](const Plane& strip) { GatedDetailColumns(strip, crispColumns); }, Form::stripOfColumns, 0x0e3e294c},
    {"strong gated columns", [](const Plane& strip) { GatedDetailColumns(strip, strong); }, Form::stripOfColumns, 0x4e89e540},
    {"knee columns", [](const Plane& strip) { KneeDetailColumns(strip, crispColumns); }, Form::stripOfColumns, 0x78fc6a06},
    {"usual limits", [](const Plane& strip) { LimitEdgesSimple(strip, {}); }, Form::stripOfRows, 0x2dae16cf},
    {"far limits", [](const Plane& strip) { LimitEdgesSimple(strip, {15, 90, 100}); }, Form::stripOfRows, 0x77646d7b},
    {"near limits", [](const Plane& strip) { LimitEdgesSimple(strip, {30, 0, 20}); }, Form::stripOfRows, 0xce54ef9e},
    {"booster", [](const Plane& strip) { BoostSmallSignals(strip, {5, 90}); }, Form::stripOfRows, 0x895dc6b5},
    {"across the rows", RunCrossStage, Form::plane, 0xd2f3e824},
    {"across the columns", [](const Plane& plane) { CrossColumns(plane, {5, 9, 250}); }, Form::plane, 0x1c3fe334},
};
// clang-format on

/// Digest of planes of every width up to their stride, spare columns and a spare row included, after the stage. Nothing
/// else may have changed.
uint32_t DigestOf(const Stage& stage) {
    constexpr int32_t stride = 64, guard = 256;
    const int32_t mostHeight = stage.form == Form::stripOfRows ? stripSize : 50;
    uint32_t digest = 0;
    std::mt19937 random(1);
    for (int32_t width = 1; width <= (stage.form == Form::stripOfColumns ? stripSize : stride); ++width)
        for (int32_t height = 1; height <= mostHeight; height += height % 16 < 3 ? 1 : 6) {
            std::vector<uint8_t> memory(2 * guard + stride * (height + 1));
            for (uint8_t& sample : memory)  // in every other width so little contrast that gates stay closed
                sample = static_cast<uint8_t>(width % 2 == 0 ? random() : 100 + random() % 12);
            const std::vector<uint8_t> before = memory;
            stage.run({memory.data() + guard, width, height, stride});
            digest = Crc32(memory.data() + guard, memory.size() - 2 * guard, digest);
            EXPECT_TRUE(std::equal(memory.begin(), memory.begin() + guard, before.begin()) &&
                        std::equal(memory.end() - guard, memory.end(), before.end() - guard))
                << stage.name << ", " << width << " x " << height << ": guards";
        }
    return digest;
}

TEST(DetailStages, GiveThePinnedSamplesAtEveryWidthAndHeight) {
    for (const Stage& stage : stages) EXPECT_EQ(DigestOf(stage), stage.digest) << stage.name;
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
