// The tuning harness: its random draws, the error it reports, and that it finds better settings and always the same.
#include "engine/tuning/tuning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "tests/support/test_images.h"

namespace clarivex {
namespace {

/// Waves and soft discs, which the start settings overdraw.
WorkingImage MadeUpTarget(int32_t width, int32_t height) {
    WorkingImage image = TestImage(width, height, Texture::soft, 1);
    const Plane& luma = image.Planes().luma;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            const double disc = std::max(0.0, 9.0 - std::hypot(x % 24 - 12, y % 20 - 10)) * 9.0;
            luma.Row(y)[x] = static_cast<uint8_t>(90.0 + 40.0 * std::sin(x / 2.5) * std::cos(y / 3.1) + disc);
        }
    return image;
}

struct TuningRun {
    Tuning tuning;
    std::vector<TuningAttempt> attempts;
};

TuningRun Tune(const WorkingImage& target, const TuningOptions& options, const KernelTable& kernels = scalarKernels) {
    TuningRun run;
    EngineSettings settings;
    settings.frame.sharpness = 0.8F;
    run.tuning = TuneEngine(
        settings, target.Planes(), options, [&](const TuningAttempt& attempt) { run.attempts.push_back(attempt); },
        kernels);
    return run;
}

double PlainError(const Plane& actual, const Plane& wanted, int32_t width, int32_t height) {
    double sum = 0.0;
    for (int32_t y = 8; y < height - 8; ++y)
        for (int32_t x = 16; x < width - 16; ++x) sum += std::pow(actual.Row(y)[x] - wanted.Row(y)[x], 2);
    return sum / 255.0 / ((width - 32) * (height - 16));
}

TEST(TuneEngine, FindsBetterSettingsThanItStartedWith) {
    const WorkingImage target = MadeUpTarget(96, 60);
    for (const TuningScale scale : {TuningScale::unscaled, TuningScale::threeHalves, TuningScale::twofold}) {
        const TuningRun run = Tune(target, {.attempts = 150, .seed = 3, .scale = scale});
        const Tuning& tuning = run.tuning;
        EXPECT_LT(tuning.bestError, 0.95 * tuning.startError) << "scale " << static_cast<int32_t>(scale) << " halves";
        EXPECT_DOUBLE_EQ(PlainError(tuning.enhanced.Planes().luma, target.Planes().luma, 96, 60), tuning.bestError);

        ASSERT_EQ(run.attempts.size(), 150U);
        double best = tuning.startError;
        for (const TuningAttempt& attempt : run.attempts) {
            EXPECT_EQ(attempt.improves, attempt.error < best) << "attempt " << attempt.number;
            if (attempt.improves) best = attempt.error;
        }
        EXPECT_EQ(best, tuning.bestError);
        EXPECT_EQ(tuning.settings.at(0).best, tuning.best.frame.sharpness);
    }
}

TEST(TuneEngine, SameSeedSameResultOnEveryInstructionSet) {
    const WorkingImage target = MadeUpTarget(77, 51);
    const auto tune = [&](uint32_t seed, const KernelTable& table) {
        return Tune(target, {.attempts = 40, .seed = seed}, table).tuning;
    };
    const Tuning expected = tune(5, scalarKernels);
    ForEachRunnableTable([&](const KernelTable& table) {
        const Tuning tuning = tune(5, table);
        EXPECT_EQ(tuning.bestError, expected.bestError) << table.name;
        EXPECT_TRUE(SamePictures(tuning.enhanced.Planes(), expected.enhanced.Planes())) << table.name;
    });
    EXPECT_NE(tune(6, scalarKernels).bestError, expected.bestError);
}

TEST(TuneEngine, ReducesByAveragesOfArea) {
    WorkingImage target;
    target.Resize(35, 17);
    for (const Plane& plane : {target.Planes().luma, target.Planes().second, target.Planes().third})
        for (int32_t y = 0; y < plane.height; ++y)
            for (int32_t x = 0; x < plane.width; ++x) plane.Row(y)[x] = static_cast<uint8_t>(x % 3 == 0 ? 90 : x);
    const Tuning threeHalves = Tune(target, {.attempts = 0}).tuning;
    const Plane& luma = threeHalves.reduced.Planes().luma;
    EXPECT_EQ(luma.width, 24) << "36 samples, the even width";
    EXPECT_EQ(luma.height, 12);
    EXPECT_EQ(luma.Row(0)[2], 61) << "(2 * 90 + 4) / 3";
    EXPECT_EQ(luma.Row(11)[3], 5) << "(4 + 2 * 5) / 3, rounded";
    EXPECT_EQ(luma.Row(0)[23], 34) << "the repeated column";
    EXPECT_EQ(threeHalves.reduced.Planes().third.Row(5)[3], 5);

    const Tuning twofold = Tune(target, {.attempts = 0, .scale = TuningScale::twofold}).tuning;
    EXPECT_EQ(twofold.reduced.Planes().luma.width, 18);
    EXPECT_EQ(twofold.reduced.Planes().luma.Row(8)[2], 5) << "(4 + 5) / 2, rounded";
}

TEST(TuneEngine, TakesTheSizesThatTheEngineEnlargesInFull) {
    for (const TuningScale scale : {TuningScale::threeHalves, TuningScale::twofold}) {
        const auto [leastWidth, leastHeight, mostWidth, mostHeight] = TuningLimitsOf(scale);
        const int32_t halves = static_cast<int32_t>(scale);
        const auto enlarges = [=](int32_t width, int32_t height) {
            const auto reduced = [=](int32_t side) { return (2 * ((side + 1) & ~1) + halves - 1) / halves; };
            const auto mode = static_cast<AxisScale>(halves - 2);
            return LimitModes({mode, mode}, {reduced(width), reduced(height)}).vertical == mode;
        };
        EXPECT_TRUE(enlarges(mostWidth, mostHeight));
        EXPECT_FALSE(enlarges(mostWidth + 1, mostHeight) || enlarges(mostWidth, mostHeight + 1));
        EXPECT_NO_THROW(Tune(MadeUpTarget(leastWidth, leastHeight), {.attempts = 1, .scale = scale}));
        for (const auto& [width, height] : {std::pair{leastWidth - 1, 17}, {33, leastHeight - 1}, {mostWidth + 1, 17}})
            EXPECT_THROW(Tune(MadeUpTarget(width, height), {.attempts = 1, .scale = scale}), std::invalid_argument);
    }
}

}  // namespace
}  // namespace clarivex
