// The stages that work in place, each against a rule that tells for every sample of a plane what stands there afterwards:
// the detail kernels in strips and what the start-up values leave off.
#include "engine/sleeping/detail_stages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

#include "algorithms/sleeping/edge_sharpeners.h"
#include "engine/cross_stage.h"
#include "engine/sleeping/cross_columns.h"
#include "tests/support/guarded_rows.h"
#include "tests/support/sharpen_curve.h"

namespace clarivex {
namespace {

constexpr int32_t stride = 64;
constexpr int32_t anything = -1;  // a spare sample that nobody reads

/// A plane in memory that goes on behind its rows, as a stage finds it.
struct Picture {
    int32_t width, height;
    std::vector<uint8_t> memory;

    static constexpr int32_t guard = 4 * stride;
    Plane Whole() { return {memory.data() + guard, width, height, stride}; }
    int32_t At(int32_t x, int32_t y) const { return memory[static_cast<size_t>(guard + y * stride + x)]; }
};

/// All that the stages are given.
struct Values {
    SharpenCoefficients gains;
    SharpenParams narrow, wide;
    RowDither dither;
    SimpleLimits limits;
    BoosterGains booster;
    CrossGains cross;
};

int32_t Wrapped(int64_t value) { return static_cast<int16_t>(static_cast<uint16_t>(value)); }
int32_t Sample(int64_t value) { return static_cast<int32_t>(std::clamp<int64_t>(value, 0, 255)); }
int32_t UpTo8(int32_t width) { return (width + 7) / 8 * 8; }
int32_t HighHalf(int32_t a, int32_t b) { return (a * b) >> 16; }

/// Towards zero by `zone`, zero within it.
int64_t Cored(int64_t x, int64_t zone) { return x > zone ? x - zone : x < -zone ? x + zone : 0; }
/// The same in 16 bits, where x + zone wraps.
int32_t Cored16(int64_t x, int32_t zone) { return Wrapped(Cored(Wrapped(x + zone) - zone, zone)); }

/// The two measures of detail around s(0).
template <class Samples>
int32_t Narrow(Samples s) {
    return 2 * s(0) - s(-1) - s(1);
}
template <class Samples>
int32_t Wide(Samples s) {
    return 4 * s(0) + s(-1) + s(1) - 2 * (s(-2) + s(2)) - s(-3) - s(3);
}

int32_t Alternating(bool odd, int32_t even = 12, int32_t other = 4) { return odd ? other : even; }
int32_t RowRounding(RowDither dither, int32_t x, int32_t y) {
    return Alternating((y + (dither == RowDither::checkerboard ? x : 0)) % 2 != 0);
}

int32_t NarrowDetailOf(int32_t sample, int32_t measure, const SharpenCoefficients& c, int32_t rounding) {
    const int32_t cored = Cored16(Wrapped(int64_t{c.narrowExtra} * measure), std::min(c.narrowKnee, 16383));
    return Sample(sample + (Wrapped(cored + int64_t{c.narrowBase} * measure + rounding) >> 4));
}

int32_t NarrowRows(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x >= UpTo8(p.width) || y == p.height) return p.At(x, y);
    const auto along = [&](int32_t k) { return x + k < 0 ? 0 : p.At(x + k, y); };
    return NarrowDetailOf(p.At(x, y), Narrow(along), v.gains, RowRounding(RowDither::checkerboard, x, y));
}

int32_t NarrowColumns(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x >= p.width || p.height < 2) return p.At(x, y);
    const auto down = [&](int32_t k) { return p.At(x, std::clamp(y + k, 0, p.height - 1)); };
    if (y >= p.height / 2 * 2) return down(0);  // into the spare row, too
    return NarrowDetailOf(down(0), Narrow(down), v.gains, Alternating(y % 2 == 0));
}

/// A row as the kernels with the wide measure see it: its last sample goes on, and left of it stands sample 1.
int32_t Padded(const Picture& p, int32_t x, int32_t y) { return p.At(std::min(x < 0 ? 1 : x, p.width - 1), y); }

/// What is added to sample i of a group: the base gain on its measure and, where one measure of the group exceeds the
/// gate, the extra gain behind a dead zone, which never turns the sum round.
template <class Measure, class Product>
int32_t GatedPart(int32_t i, Measure measure, int32_t gate, int32_t zone, Product product, int32_t base, int32_t extra,
                  int32_t (*limit)(int32_t)) {
    bool open = false;
    for (int32_t j = 0; j < 4; ++j) open |= (measure(j) < 0 ? -measure(j) - 1 : measure(j)) > gate;
    const int32_t plain = product(measure(i), base);
    const int32_t sum = limit(Cored16(open ? product(measure(i), extra) : 0, zone) + plain);
    return (sum < 0) == (plain < 0) ? sum : 0;
}

struct GateValues {
    int32_t share, wideShare, narrowZone, wideBase, wideExtra, wideZone;
};

/// samples(column, k): the k-th neighbour of a column, along the row or down the column.
template <class Samples>
int32_t Gated(int32_t x, Samples samples, const SharpenCoefficients& c, const GateValues& g, int32_t rounding) {
    const int32_t q = c.narrowExtra == 0 ? 0 : (g.narrowZone << 8) / c.narrowExtra;
    const int32_t gate = std::min((g.share * q) >> 12, 15);
    const auto at = [&](int32_t i) { return [=](int32_t k) { return samples((x & ~3) + i, k); }; };
    const int32_t narrow = GatedPart(
        x & 3, [&](int32_t i) { return Narrow(at(i)); }, gate, g.narrowZone,
        [](int32_t n, int32_t gain) { return Wrapped(int64_t{n} * gain); }, c.narrowBase, c.narrowExtra,
        [](int32_t sum) { return Wrapped(sum); });
    const int32_t wide = GatedPart(
        x & 3, [&](int32_t i) { return Wide(at(i)); }, g.wideShare * gate / 16, g.wideZone,
        [](int32_t w, int32_t gain) { return Wrapped(HighHalf(16 * w, Wrapped(gain)) * 4); }, g.wideBase, g.wideExtra,
        [](int32_t sum) { return std::clamp(sum, -32768, 32767); });
    return Sample(samples(x, 0) + (Wrapped(wide + narrow + rounding) >> 4));
}

int32_t GatedRows(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x >= UpTo8(p.width) || y == p.height) return p.At(x, y);
    if (x >= UpTo8(p.width) - 8) return Padded(p, x, y);
    const SharpenCoefficients& c = v.gains;
    return Gated(
        x, [&](int32_t column, int32_t k) { return Padded(p, column + k, y); }, c,
        {86, 18, c.narrowKnee, c.wideBase >> 2, c.wideExtra >> 2, c.wideKnee >> 12}, RowRounding(v.dither, x, y));
}

int32_t GatedColumns(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x >= (p.width + 3) / 4 * 4 || y >= (p.height + 1) / 2 * 2 - 4) return p.At(x, y);
    const SharpenCoefficients& c = v.gains;
    return Gated(
        x, [&](int32_t column, int32_t k) { return p.At(column, std::max(y + k, 0)); }, c,
        {70, 17, std::min(c.narrowKnee, 16383), 64 * c.wideBase, 64 * c.wideExtra, c.wideKnee >> 4},
        Alternating(y % 2 == 0));
}

int32_t KneeRows(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x >= UpTo8(p.width) || y == p.height) return p.At(x, y);
    if (x >= UpTo8(p.width) - 8) return Padded(p, x, y);
    SharpenCoefficients c = v.gains;
    c.narrowBase = std::min(c.narrowBase, 32767);
    int32_t zone = std::min(c.wideKnee >> 13, 16383), halfExtra = c.wideExtra >> 1;
    if (c.wideBase > 32767) {  // what the base cannot take goes into the extra gain
        zone = zone * 32767 / c.wideBase;
        halfExtra += c.wideBase - 32767;
        c.wideBase = 32767;
    }
    const auto along = [&](int32_t k) { return Padded(p, x + k, y); };
    const int32_t wide = 16 * Wide(along), narrow = Narrow(along);
    const int32_t once = Cored16(HighHalf(wide, std::max(halfExtra, -32768)), zone), twice = Cored16(once, zone);
    const int32_t wideDetail = std::clamp(HighHalf(wide, c.wideBase) + Wrapped(once + twice), -32768, 32767);
    const int32_t extra = Cored16(Wrapped(c.narrowExtra * narrow), std::min(c.narrowKnee, 16383));
    const int32_t detail = wideDetail + extra + Wrapped(c.narrowBase * narrow) + RowRounding(v.dither, x, y);
    return Sample(along(0) + (Wrapped(detail) >> 4));
}

int32_t KneeColumns(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x >= p.width || y < 3 || y >= p.height - 3) return p.At(x, y);
    const auto down = [&](int32_t k) { return p.At(x, y + k); };
    const SharpenCoefficients& c = v.gains;
    const int64_t n = Narrow(down), w = Wide(down);
    const int64_t narrow = c.narrowBase * n + Cored(c.narrowExtra * n, std::min(c.narrowKnee, 16383));
    const int64_t wide = c.wideBase * w + Cored(c.wideExtra * w, c.wideKnee);
    return Sample((256 * down(0) + 16 * narrow + wide + (y % 2 == 0 ? 64 : 192)) >> 8);
}

/// The knee along the rows in full width; what it pushes beyond black and white is softened.
int32_t ScalarKneeRows(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x < 3 || x >= p.width - 3 || y == p.height) return p.At(x, y);
    const SharpenCoefficients c = DeriveSharpenCoefficients(v.narrow, v.wide, 1, 1);
    const auto unlimited = [&](int32_t column) {
        const auto along = [&](int32_t k) { return p.At(column + k, y); };
        const int64_t n = Narrow(along), w = 16 * int64_t{Wide(along)};
        const int64_t narrow = c.narrowBase * n + Cored(c.narrowExtra * n, std::min(c.narrowKnee, 16383));
        const int64_t wide =
            ((w * c.wideBase * 256) >> 16) + Cored((w * c.wideExtra * 256) >> 16, std::min(c.wideKnee >> 4, 16383));
        const int32_t rounding = y % 2 == 0 ? Alternating(column % 2 != 0, 2, 10) : Alternating(column % 2 != 0, 14, 6);
        return (16 * along(0) + wide + narrow + rounding) >> 4;
    };
    if (x < 5 || x >= p.width - 5) return Sample(unlimited(x));
    int64_t clipped = 0;
    for (int32_t i = x - 2; i <= x + 2; ++i) clipped += std::abs(unlimited(i) - Sample(unlimited(i)));
    const int64_t bend = unlimited(x - 1) - 2 * unlimited(x) + unlimited(x + 1);
    return Sample((512 * unlimited(x) + std::min<int64_t>(clipped, 170) * bend) >> 9);
}

int32_t LimitedSimply(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (y == p.height || x >= (p.width + 3) / 4 * 4) return p.At(x, y);
    if (x >= p.width) return anything;
    const auto along = [&](int32_t k) { return p.At(std::clamp(x + k, 0, p.width - 1), y); };
    const int32_t c = along(0), zone = v.limits.deadZone, once = Cored16(v.limits.gain * Narrow(along), zone);
    const auto towards = [&](int32_t k) { return Sample(c + (((along(k) - c) * v.limits.neighbourWeight) >> 6)); };
    const auto [low, high] = std::minmax({towards(-1), c, towards(1)});
    return std::clamp(Sample(c + (Wrapped(once + Cored16(once, zone) + 16) >> 5)), low, high);
}

int32_t Boosted(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (y == p.height || x >= (p.width - 8) / 8 * 8) return p.At(x, y);
    const auto small = [&](int32_t i) {
        if (i < 4) return 0;
        const int32_t q = v.booster.gain * (2 * p.At(i, y) - p.At(i - 2, y) - p.At(i + 2, y));
        return q - Cored16(q, v.booster.deadZone);
    };
    return Sample(p.At(x, y) + ((small(x - 1) + small(x) + small(x + 1) + 32) >> 6));
}

int32_t AcrossRows(const Picture& p, int32_t x, int32_t y, const Values& v) {
    const bool tall = p.height > stripSize;
    const int32_t first = tall && y >= 15 ? 15 : 0, end = tall && y < 15 ? 15 : p.height;
    if (x >= UpTo8(p.width) || y >= first + (end - first) / 2 * 2) return p.At(x, y);  // rows go in pairs
    const auto down = [&](int32_t k) { return p.At(x, std::clamp(y + k, 0, p.height - 1)); };
    const SharpenCoefficients c{
        .narrowBase = v.cross.base, .narrowExtra = v.cross.extra, .narrowKnee = v.cross.deadZone};
    return NarrowDetailOf(down(0), Narrow(down), c, Alternating((y - first) % 2 == 0));
}

int32_t AcrossColumns(const Picture& p, int32_t x, int32_t y, const Values& v) {
    if (x >= p.width || y == p.height) return p.At(x, y);
    const auto down = [&](int32_t k) { return p.At(x, std::clamp(y + k, 0, p.height - 1)); };
    const int32_t n = Narrow(down), once = Cored16((v.cross.extra >> 1) * n, v.cross.deadZone);
    const int32_t detail = v.cross.base * n + once + Cored16(once, v.cross.deadZone);
    return Sample(down(0) + ((detail + Alternating((x + y) % 2 != 0)) >> 4));
}

void RunCrossStage(const Plane& plane, const Values& v) {
    uint8_t line[stride];
    CrossStage stage(v.cross, line);
    for (int32_t y = 0; y < plane.height; y += stripSize) stage.Run(plane, y);
}

struct Stage {
    const char* name;
    void (*run)(const Plane& plane, const Values& values);
    int32_t (*expected)(const Picture& before, int32_t x, int32_t y, const Values& values);
    int32_t mostColumns, mostRows;
};

// clang-format off
constexpr Stage stages[] = {
    {"narrow rows", [](const Plane& p, const Values& v) { NarrowDetailRows(p, v.gains); }, NarrowRows, stride, 16},
    {"narrow columns", [](const Plane& p, const Values& v) { NarrowDetailColumns(p, v.gains); }, NarrowColumns, 16, 50},
    {"gated rows", [](const Plane& p, const Values& v) { GatedDetailRows(p, v.gains, v.dither); }, GatedRows, stride, 16},
    {"gated columns", [](const Plane& p, const Values& v) { GatedDetailColumns(p, v.gains); }, GatedColumns, 16, 50},
    {"knee rows", [](const Plane& p, const Values& v) { KneeDetailRows(p, v.gains, v.dither); }, KneeRows, stride, 16},
    {"knee columns", [](const Plane& p, const Values& v) { KneeDetailColumns(p, v.gains); }, KneeColumns, 16, 50},
    {"scalar knee", [](const Plane& p, const Values& v) { SharpenRowsKnee(p, v.narrow, v.wide, true, v.dither, nullptr); },
     ScalarKneeRows, stride, 50},
    {"simple limits", [](const Plane& p, const Values& v) { LimitEdgesSimple(p, v.limits); }, LimitedSimply, stride, 16},
    {"booster", [](const Plane& p, const Values& v) { BoostSmallSignals(p, v.booster); }, Boosted, stride, 16},
    {"across rows", RunCrossStage, AcrossRows, stride, 50},
    {"across columns", [](const Plane& p, const Values& v) { CrossColumns(p, v.cross); }, AcrossColumns, stride, 50},
};
// clang-format on

/// Ordinary gains most of the time; else such that products leave 16 bits.
Values AnyValues(std::mt19937& random) {
    const auto between = [&](int32_t low, int32_t high) { return low + UpTo(random, high - low); };
    const bool strong = UpTo(random, 4) == 0, weak = UpTo(random, 2) == 0;
    Values v;
    v.gains = {.narrowBase = strong ? between(30000, 1 << 20) : between(-6, 12),
               .narrowExtra = strong ? between(-2000, 2000) : between(-9, 9),
               .narrowKnee = strong ? between(0, 20000) : between(0, 400),
               .wideBase = weak ? between(-60, 60) : between(-9000, strong ? 50000 : 9000),
               .wideExtra = weak ? between(-60, 60) : between(-20000, 30000),
               .wideKnee = between(0, weak ? 8000 : 60 << 13)};
    const auto log2 = [&] { return static_cast<float>(between(-30, 20)) / 10; };
    v.narrow = Curve(log2(), log2(), static_cast<float>(between(0, 30)));
    v.wide = Curve(log2(), log2(), static_cast<float>(between(0, 30)));
    v.dither = weak ? RowDither::byRow : RowDither::checkerboard;
    const auto word = [&](int32_t low, int32_t high) { return static_cast<int16_t>(between(low, high)); };
    v.limits = {word(0, 60), word(0, 120), word(0, 110)};
    v.booster = {word(0, 20), word(0, 300)};
    v.cross = {word(-5, 15), word(-12, 12), word(0, 400)};
    return v;
}

/// Where the stage leaves something else than expected, spare columns, a spare row and what follows included.
std::string FaultOf(const Stage& stage, const Picture& before, const Values& values) {
    Picture after = before;
    stage.run(after.Whole(), values);
    std::ostringstream fault;
    for (int32_t y = -4; y < before.height + 4; ++y)
        for (int32_t x = 0; x < stride; ++x) {
            const bool touched = y >= 0 && y <= before.height;
            const int32_t expected = touched ? stage.expected(before, x, y, values) : before.At(x, y);
            if (expected != anything && after.At(x, y) != expected && fault.str().empty())
                fault << before.width << " x " << before.height << ": " << x << ", " << y << " is " << after.At(x, y)
                      << " instead of " << expected;
        }
    return fault.str();
}

TEST(DetailStages, LeaveWhatTheirRulesSayInAnyPicture) {
    for (const Stage& stage : stages) {
        std::mt19937 random(1);
        for (int32_t trial = 0; trial < 250; ++trial) {
            Picture picture{1 + UpTo(random, stage.mostColumns - 1), 1 + UpTo(random, stage.mostRows - 1), {}};
            picture.memory.resize(static_cast<size_t>(2 * Picture::guard + stride * picture.height));
            for (uint8_t& sample : picture.memory)  // in every other one so little contrast that gates stay closed
                sample = static_cast<uint8_t>(trial % 2 == 0 ? random() : 100 + random() % 12);
            ASSERT_EQ("", FaultOf(stage, picture, AnyValues(random))) << stage.name << ", trial " << trial;
        }
    }
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
