// Times that are missing, stand still or go back are made up; all others stay.
#include "host/film/frame_times.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(FrameTimer, TimesGrowFromFrameToFrame) {
    constexpr std::nullopt_t missing = std::nullopt;
    struct {
        std::vector<std::optional<int64_t>> told;
        std::vector<int64_t> times;
        uint64_t madeUp;
    } const cases[] = {{{0, 40, 81, 1000, 1001}, {0, 40, 81, 1000, 1001}, 0},  // a variable rate
                       {{-80, -40, 0}, {-80, -40, 0}, 0},
                       {{missing, missing, missing}, {0, 40, 80}, 3},
                       {{100, 100, 90, 141, 300}, {100, 140, 180, 220, 300}, 3},
                       {{500, missing, 560}, {500, 540, 560}, 1}};
    for (const auto& [told, times, madeUp] : cases) {
        FrameTimer timer(40);
        std::vector<int64_t> got;
        for (const auto& one : told) got.push_back(timer.Next(one));
        EXPECT_EQ(got, times);
        EXPECT_EQ(timer.MadeUp(), madeUp);
    }
}

}  // namespace
}  // namespace clarivex
