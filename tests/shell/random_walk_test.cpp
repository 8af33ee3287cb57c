// Random walks over the media object's methods: nothing crashes, leaks, overruns a buffer or gives an unknown result.

#include "shell/class_factory.h"
#include "tests/support/negotiation_walk.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

class RandomWalk : public testing::TestWithParam<uint32_t> {};

TEST_P(RandomWalk, FindsNothingWrong) {
    std::mt19937 random(GetParam());
    constexpr int steps = 2000;
    {
        NegotiationWalk walk([&](uint32_t bound) { return static_cast<uint32_t>(random() % bound); },
                             GetParam() % 2 == 0 ? clsidVideoEffect : clsidMediaObject);
        for (int step = 0; step < steps; ++step)
            ASSERT_EQ("", walk.Step()) << "seed " << GetParam() << ", step " << step;
        EXPECT_EQ("", walk.Finish());
        EXPECT_GE(walk.FramesMade(), 10);  // else it has not been far
    }
    EXPECT_EQ(S_OK, CanUnloadNow());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomWalk, testing::Range(1U, 17U));

}  // namespace
}  // namespace clarivex
