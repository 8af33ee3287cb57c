#include "runtime/sleeping/clock.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

// A machine whose counters a test sets by hand.
struct FakeMachine {
    static inline int64_t frequency = 0;
    static inline int64_t counter = 0;
    static inline uint32_t timer = 0;
    static inline uint64_t stamp = 0;
    static inline int counterReads = 0;

    static ClockSources Start(int64_t startFrequency) {
        frequency = startFrequency;
        counter = 1;
        timer = 0;
        stamp = 0;
        counterReads = 0;
        return {.performanceFrequency = [] { return frequency; },
                .performanceCounter = [] { return ++counterReads, counter; },
                .milliseconds = [] { return timer; },
                .timeStamp = [] { return stamp; }};
    }
};

TEST(HiResClock, StaysMonotonicAcrossTheWrapOfTheTimer) {
    HiResClock clock(FakeMachine::Start(0));
    const auto at = [&clock](uint32_t milliseconds) {
        FakeMachine::timer = milliseconds;
        return clock.Now();
    };
    EXPECT_EQ(at(0x7FFFFFFF), int64_t{0x7FFFFFFF} * 10'000);
    EXPECT_EQ(at(0xFFFFFFFF), int64_t{0xFFFFFFFF} * 10'000);
    EXPECT_EQ(at(3), (int64_t{1} << 32) * 10'000 + 30'000);
    EXPECT_EQ(at(0x90000000), ((int64_t{1} << 32) + 0x90000000) * 10'000);
    EXPECT_EQ(at(0), (int64_t{2} << 32) * 10'000);
}

TEST(HiResClock, GivesUpACounterThatReadsZeroForGood) {
    HiResClock clock(FakeMachine::Start(1000));
    FakeMachine::counter = 0;
    FakeMachine::timer = 20;
    EXPECT_EQ(clock.Now(), 200'000);
    FakeMachine::counter = 500'000;
    EXPECT_EQ(clock.Now(), 200'000);
}

// Lets a second pass at a time; the stamp runs at 2.5 GHz.
void RunSeconds(HiResClock& clock, int seconds) {
    for (int i = 0; i < seconds; ++i) {
        FakeMachine::counter += 1'000'000;
        FakeMachine::stamp += 2'500'000'000;
        clock.Now();
    }
}

TEST(HiResClock, ReadsOnlyTheTimeStampAfterFiveSamples) {
    HiResClock clock(FakeMachine::Start(1'000'000));
    RunSeconds(clock, 5);
    const int reads = FakeMachine::counterReads;
    FakeMachine::stamp += 1'250'000'000;
    EXPECT_EQ(clock.Now(), 55'000'010);
    EXPECT_EQ(FakeMachine::counterReads, reads);
    RunSeconds(clock, 3600);
    EXPECT_EQ(clock.Now(), 36'055'000'010);
}

TEST(HiResClock, NeverTrustsATimeStampThatStandsStill) {
    HiResClock clock(FakeMachine::Start(1'000'000));
    for (int i = 0; i < 20; ++i) {
        FakeMachine::counter += 1'000'000;
        EXPECT_EQ(clock.Now(), FakeMachine::counter * 10);
    }
}

}  // namespace
}  // namespace clarivex
