#include "runtime/sleeping/clock.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

// A machine whose counters a test sets by hand.
struct FakeMachine {
    int64_t frequency = 0;
    int64_t counter = 1;
    uint32_t timer = 0;
    uint64_t stamp = 0;
    int counterReads = 0;
};

FakeMachine machine;

ClockSources Start(int64_t frequency) {
    machine = {.frequency = frequency};
    return {.performanceFrequency = [] { return machine.frequency; },
            .performanceCounter = [] { return ++machine.counterReads, machine.counter; },
            .milliseconds = [] { return machine.timer; },
            .timeStamp = [] { return machine.stamp; }};
}

TEST(HiResClock, StaysMonotonicAcrossTheWrapOfTheTimer) {
    HiResClock clock(Start(0));
    const auto at = [&clock](uint32_t milliseconds) {
        machine.timer = milliseconds;
        return clock.Now();
    };
    EXPECT_EQ(at(0x7FFFFFFF), int64_t{0x7FFFFFFF} * 10'000);
    EXPECT_EQ(at(0xFFFFFFFF), int64_t{0xFFFFFFFF} * 10'000);
    EXPECT_EQ(at(3), (int64_t{1} << 32) * 10'000 + 30'000);
    EXPECT_EQ(at(0x90000000), ((int64_t{1} << 32) + 0x90000000) * 10'000);
    EXPECT_EQ(at(0), (int64_t{2} << 32) * 10'000);
}

TEST(HiResClock, GivesUpACounterThatReadsZeroForGood) {
    HiResClock clock(Start(1000));
    machine.counter = 0;
    machine.timer = 20;
    EXPECT_EQ(clock.Now(), 200'000);
    machine.counter = 500'000;
    EXPECT_EQ(clock.Now(), 200'000);
}

TEST(HiResClock, ReadsOnlyTheTimeStampAfterFiveSamplesUnlessItStandsStill) {
    for (const uint64_t stampsASecond : {uint64_t{2'500'000'000}, uint64_t{0}}) {
        HiResClock clock(Start(1'000'000));
        for (int second = 0; second < 20; ++second) {
            machine.counter += 1'000'000;
            machine.stamp += stampsASecond;
            EXPECT_EQ(clock.Now(), machine.counter * 10);
        }
        EXPECT_EQ(machine.counterReads, stampsASecond == 0 ? 20 : 5);
        machine.stamp += stampsASecond / 2;
        EXPECT_EQ(clock.Now(), machine.counter * 10 + (stampsASecond == 0 ? 0 : 5'000'000));
    }
}

}  // namespace
}  // namespace clarivex
