// The words of the progress, summary and timing lines.
#include "host/progress.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(ProgressText, TellsOnlyWhatIsKnown) {
    constexpr std::nullopt_t unknown = std::nullopt;
    const std::pair<Advance, const char*> cases[] = {
        {{100, 300, 2.0, 0.0, unknown}, "100 of 300 frames, 33 %, 50.0 frames/s, 0:04 left"},
        {{100, unknown, 2.0, 0.0, unknown}, "100 frames, 50.0 frames/s"},
        {{1, 7201, 1.0, 0.0, unknown}, "1 of 7201 frames, 0 %, 1.0 frames/s, 2:00:00 left"},
        {{301, 300, 3.01, 0.0, unknown}, "301 frames, 100.0 frames/s"},  // the file grew while it was read
        {{50, unknown, 4.0, 2.0, 8.0}, "50 frames, 25 %, 12.5 frames/s, 0.5 x real time, 0:12 left"},
        {{50, 100, 1.0, 2.0, 8.0}, "50 of 100 frames, 50 %, 50.0 frames/s, 2.0 x real time, 0:01 left"},
        {{50, unknown, 4.0, 9.0, 8.0}, "50 frames, 100 %, 12.5 frames/s, 2.2 x real time, 0:00 left"},
        {{0, 5, 0.0, 0.0, 0.0}, "0 of 5 frames, 0.0 frames/s"}};
    for (const auto& [advance, text] : cases) EXPECT_EQ(ProgressText(advance), text);
    EXPECT_EQ(ProgressText({1, 2, 1.0, 0.0, unknown}, "attempt"), "1 of 2 attempts, 50 %, 1.0 attempts/s, 0:01 left");
    EXPECT_NE(ProgressText({1, UINT64_MAX, 1e9, 0.0, unknown}), "");
}

TEST(TimingText, SumsAndSortsTheTimes) {
    using std::chrono::microseconds;
    EXPECT_EQ(TimingText(std::vector<Clock::duration>{microseconds(900), microseconds(100), microseconds(200)}),
              "timing: 3 frames in ProcessOutput, total 1.200 ms, mean 0.4000 ms, minimum 0.1000 ms, median 0.2000 ms");
    EXPECT_EQ(TimingText({}), "timing: 0 frames in ProcessOutput");
}

}  // namespace
}  // namespace clarivex
