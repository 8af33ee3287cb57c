// The speed measurement on clocks that a test moves, and what follows from a speed.
#include "shell/cpu_speed.h"

#include <gtest/gtest.h>

#include <vector>

namespace clarivex {
namespace {

// A machine whose clocks move only while it sleeps, by a rate for each round.
struct FakeMachine {
    uint64_t stamps = 1'000'000;
    int64_t counts = 77;
    std::vector<double> stampsPerCount = {2000.0, 2000.0, 2000.0};
    int64_t countsPerMillisecond = 1000;
    std::vector<uint32_t> sleeps;
};
FakeMachine machine;

SpeedSources FakeSources() {
    return {.timeStamp = [] { return machine.stamps; },
            .performanceCounter = [] { return machine.counts; },
            .performanceFrequency = [] { return int64_t{1'000'000}; },
            .sleep =
                [](uint32_t milliseconds) {
                    const int64_t counts = machine.countsPerMillisecond * milliseconds;
                    const double rate = machine.stampsPerCount[machine.sleeps.size() % 3];
                    machine.counts += counts;
                    machine.stamps += static_cast<uint64_t>(static_cast<int64_t>(rate * static_cast<double>(counts)));
                    machine.sleeps.push_back(milliseconds);
                }};
}

float SpeedAt(const std::vector<double>& stampsPerCount, int64_t countsPerMillisecond = 1000) {
    machine = {};
    machine.stampsPerCount = stampsPerCount;
    machine.countsPerMillisecond = countsPerMillisecond;
    CpuSpeedMeter meter(FakeSources());
    return meter.Measure();
}

TEST(CpuSpeed, HighestOfThreeRoundsCounts) {
    EXPECT_FLOAT_EQ(2.0F, SpeedAt({2000.0, 2000.0, 2000.0}));
    EXPECT_EQ((std::vector<uint32_t>{100, 50, 50}), machine.sleeps);
    EXPECT_FLOAT_EQ(3.5F, SpeedAt({1000.0, 3500.0, 2000.0}));
    EXPECT_FLOAT_EQ(1.5F, SpeedAt({-7.0, 0.0, 1500.0}));
    EXPECT_EQ(1.0F, SpeedAt({-5.0, -5.0, 0.0})) << "no usable round";
    EXPECT_EQ(1.0F, SpeedAt({2000.0, 2000.0, 2000.0}, 0)) << "neither clock moves";
}

TEST(CpuSpeed, IsMeasuredOnce) {
    machine = {};
    CpuSpeedMeter meter(FakeSources());
    meter.Measure();
    machine.stampsPerCount = {9000.0, 9000.0, 9000.0};
    EXPECT_FLOAT_EQ(2.0F, meter.Measure());
    EXPECT_EQ(3U, machine.sleeps.size());
    EXPECT_GT(MeasureCpuSpeed(), 0.0F);
}

TEST(LargestAutomaticArea, IsTheLastThatScoresOne) {
    for (float speed : {0.001F, 0.7F, 1.0F, 2.4F, 5.0F}) {
        const int64_t area = LargestAutomaticArea(speed);
        EXPECT_GE(SpeedScore(speed, area), 1.0) << speed;
        EXPECT_LT(SpeedScore(speed, area + 1), 1.0) << speed;
    }
    EXPECT_EQ(0, LargestAutomaticArea(1e-9F));
    EXPECT_NEAR(1.632, SpeedScore(1.0F, 100000), 0.0002);
}

}  // namespace
}  // namespace clarivex
