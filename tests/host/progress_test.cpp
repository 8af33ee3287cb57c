// The words of the progress, summary and timing lines.
#include "host/progress.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(ProgressText, TellsTimeLeftOnlyWithAKnownLengthAndBothSizesAtTheEnd) {
    EXPECT_EQ(ProgressText(100, 300, 2.0), "100 of 300 frames, 50.0 frames/s, 0:04 left");
    EXPECT_EQ(ProgressText(100, std::nullopt, 2.0), "100 frames, 50.0 frames/s");
    EXPECT_EQ(ProgressText(1, 7201, 1.0), "1 of 7201 frames, 1.0 frames/s, 2:00:00 left");
    EXPECT_EQ(ProgressText(301, 300, 3.01), "301 frames, 100.0 frames/s") << "the file grew while it was read";
    EXPECT_NE(ProgressText(1, UINT64_MAX, 1e9), "");
    EXPECT_EQ(ProgressText(1, 2, 1.0, "attempt"), "1 of 2 attempts, 1.0 attempts/s, 0:01 left");
}

TEST(TimingText, SumsAndSortsTheTimes) {
    using std::chrono::microseconds;
    EXPECT_EQ(TimingText(std::vector<Clock::duration>{microseconds(900), microseconds(100), microseconds(200)}),
              "timing: 3 frames in ProcessOutput, total 1.200 ms, mean 0.4000 ms, minimum 0.1000 ms, median 0.2000 ms");
    EXPECT_EQ(TimingText({}), "timing: 0 frames in ProcessOutput");
}

}  // namespace
}  // namespace clarivex
