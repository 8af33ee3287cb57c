// What a player assumes of untagged pictures, by their lines.
#include "host/video_colour.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(VideoColour, WhatIsNotToldFollowsTheLines) {
    const std::tuple<int32_t, int32_t, int32_t> cases[] = {
        // lines, primaries, matrix
        {240, 6, 6}, {480, 6, 6}, {288, 5, 5}, {481, 5, 5}, {576, 5, 5}, {577, 1, 1}, {1080, 1, 1}};
    for (const auto& [lines, primaries, matrix] : cases) {
        const VideoColour colour = WithAssumedColour({}, lines);
        EXPECT_EQ(std::tuple(colour.primaries, colour.matrix), std::tuple(primaries, matrix)) << lines;
        EXPECT_EQ(colour.transfer, lines > 576 ? 1 : 6) << lines;
    }
    const VideoColour told{9, 14, 9, ChromaSite::topLeft};
    EXPECT_EQ(WithAssumedColour(told, 480), told);
    EXPECT_EQ(WithAssumedColour({.matrix = 1}, 480), (VideoColour{6, 6, 1, ChromaSite::unknown}));
    EXPECT_EQ(WithAssumedColour({.primaries = 0}, 720).primaries, 1) << "a reserved code tells nothing";
}

}  // namespace
}  // namespace clarivex
