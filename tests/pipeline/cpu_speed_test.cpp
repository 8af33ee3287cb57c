// The speed measurement on clocks that a test moves, and what follows from a speed.
#include "pipeline/cpu_speed.h"

#include "platform/win32.h"
#include "tests/support/test.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {
namespace {

int OwnPriority() { return GetThreadPriority(GetCurrentThread()); }

// A machine whose clocks move only while it sleeps, by a rate for each round.
struct FakeMachine {
    std::vector<double> stampsPerCount = {2000.0, 2000.0, 2000.0};
    int64_t countsPerMillisecond = 1000;
    uint64_t stamps = 1'000'000;
    int64_t counts = 77;
    std::vector<uint32_t> sleeps = {};
    std::vector<int> priorities = {};  // of the measuring thread: while it sleeps, while it works the round out, …
};
FakeMachine machine;

int64_t OneCountAMicrosecond() {
    machine.priorities.push_back(OwnPriority());
    return 1'000'000;
}

void PassTime(uint32_t milliseconds) {
    const int64_t counts = machine.countsPerMillisecond * milliseconds;
    const double rate = machine.stampsPerCount[machine.sleeps.size() % 3];
    machine.counts += counts;
    machine.stamps += static_cast<uint64_t>(static_cast<int64_t>(rate * static_cast<double>(counts)));
    machine.sleeps.push_back(milliseconds);
    machine.priorities.push_back(OwnPriority());
}

class CpuSpeed : public testing::Test {
protected:
    ~CpuSpeed() override { SetSpeedSources(before); }

    static SpeedSources Start(const FakeMachine& started) {
        machine = started;
        return SetSpeedSources({.timeStamp = [] { return machine.stamps; },
                                .performanceCounter = [] { return machine.counts; },
                                .performanceFrequency = OneCountAMicrosecond,
                                .sleep = PassTime});
    }
    static float SpeedAt(const std::vector<double>& stampsPerCount, int64_t countsPerMillisecond = 1000) {
        Start({stampsPerCount, countsPerMillisecond});
        return MeasureCpuSpeed();
    }

    const SpeedSources before = Start({});
};

TEST_F(CpuSpeed, HighestOfThreeRoundsOnARaisedThreadCounts) {
    constexpr int belowNormal = -1;
    const int own = OwnPriority();
    ASSERT_TRUE(SetThreadPriority(GetCurrentThread(), belowNormal));
    EXPECT_FLOAT_EQ(2.0F, SpeedAt({2000.0, 2000.0, 2000.0}));
    EXPECT_EQ((std::vector<uint32_t>{100, 50, 50}), machine.sleeps);
    EXPECT_EQ((std::vector<int>{15, 1, 15, 1, 15, 1}), machine.priorities) << "raised while it sleeps";
    EXPECT_EQ(belowNormal, OwnPriority());
    SetThreadPriority(GetCurrentThread(), own);
    EXPECT_FLOAT_EQ(3.5F, SpeedAt({1000.0, 3500.0, 2000.0}));
    EXPECT_FLOAT_EQ(1.5F, SpeedAt({-7.0, 0.0, 1500.0}));
    EXPECT_EQ(1.0F, SpeedAt({-5.0, -5.0, 0.0})) << "no usable round";
    EXPECT_EQ(1.0F, SpeedAt({2000.0, 2000.0, 2000.0}, 0)) << "neither clock moves";
}

bool IsEnlarged(const TestObject& object, int32_t width, int32_t height) {
    ReceivedType offered;
    EXPECT_EQ(S_OK, object.media->SetInputType(0, VideoInfoType(width, height).Type(), 0));
    EXPECT_EQ(S_OK, object.media->GetOutputType(0, 0, offered.Out()));
    return object.ScalingActive();
}

// 163,203 pixels for each GHz.
TEST_F(CpuSpeed, DecidesInAutomaticModeAndIsMeasuredOnceForAllObjects) {
    for (const double gigahertz : {2.0, 3.0}) {
        Start({{0.0, gigahertz * 1000.0, 0.0}});
        for (const unsigned automatic : {1U, 7U}) {
            const TestObject object;
            object.settings->put_CVXMode(automatic);
            EXPECT_EQ(gigahertz == 3.0, IsEnlarged(object, 572, 571));
            EXPECT_TRUE(IsEnlarged(object, 568, 574));
            EXPECT_FALSE(IsEnlarged(object, 700, 700));
            EXPECT_EQ(gigahertz == 3.0, IsEnlarged(object, 700, 699));
        }
        EXPECT_EQ(3U, machine.sleeps.size());
    }
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
