// The property page's decisions, without a window.
#include "shell/property_page_logic.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr char alwaysText[] =
    "Setting Clarivex to ALWAYS may result in jerky or slow\nplayback on high resolution videos.";
constexpr char reloadText[] = "Changes may not take immediate effect until video is reloaded.";

PageChoices WithSharpness(float sharpness) { return {.sharpness = sharpness}; }

std::string MessageFor(const SettingsInUse& before, const PageChoices& chosen) {
    return ApplyMessage(before, chosen).Text();
}

TEST(PageSliders, EverySharpnessHasAPositionAndHalfStepsGoToTheEvenOne) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(4, PositionsFor(WithSharpness(0.25F)).edge);  // half a step: 0, not 1
    EXPECT_EQ(2, PositionsFor(WithSharpness(0.75F)).edge);
    EXPECT_EQ(3, PositionsFor(WithSharpness(0.26F)).edge);
    EXPECT_LT(PositionsFor(WithSharpness(infinity)).edge, 0);
    EXPECT_LT(PositionsFor(WithSharpness(65535.0F)).edge, 0);
    EXPECT_GT(PositionsFor(WithSharpness(-infinity)).edge, edgeTicks);
    EXPECT_EQ(edgeTicks, PositionsFor(WithSharpness(std::numeric_limits<float>::quiet_NaN())).edge);
}

TEST(PageDirtiness, EdgeSliderIsComparedFromTheOtherEnd) {
    for (int32_t position = 0; position <= edgeTicks; ++position) {
        EXPECT_EQ(position != 2, CountsAsChanged(WithSharpness(1.0F), {position, 1})) << position;
        EXPECT_EQ(position != 3, CountsAsChanged(WithSharpness(1.5F), {position, 1})) << position;
    }
    EXPECT_TRUE(CountsAsChanged(WithSharpness(2.0F), {0, 1}));  // where it was put
    EXPECT_TRUE(CountsAsChanged({.mode = modeAuto}, {2, 0}));
    EXPECT_TRUE(CountsAsChanged({.mode = modeAuto}, {2, 2}));
    EXPECT_TRUE(CountsAsChanged({.mode = 7}, {2, 2}));  // the mode's slider stops at its end
}

TEST(PageMessage, TellsWhatWaitsForTheNextVideoAndWarnsOfANewAlways) {
    const std::string both = std::string(alwaysText) + "\n\n" + reloadText;
    EXPECT_EQ("", MessageFor({modeAuto, false}, {.sharpness = 2.0F, .enableLighting = false}));
    EXPECT_EQ("", MessageFor({modeAlways, true}, {.mode = modeAlways, .bypassHd = false}));
    EXPECT_EQ(reloadText, MessageFor({modeAuto, false}, {.mode = modeNever}));
    EXPECT_EQ(reloadText, MessageFor({modeAuto, false}, {.bypassHd = false}));
    EXPECT_EQ(reloadText, MessageFor({modeAlways, true}, {.mode = modeAlways, .bypassHd = true}));
    EXPECT_EQ(both, MessageFor({modeAuto, false}, {.mode = modeAlways}));
    EXPECT_EQ(both, MessageFor({modeNever, true}, {.mode = modeAlways, .bypassHd = true}));
}

TEST(PageScaleFactor, IsShownWithTwoPlacesAndReadBack) {
    EXPECT_STREQ("0.00", ScaleFactorText(0.0).Text());
    EXPECT_STREQ("0.33", ScaleFactorText(1.0 / 3.0).Text());
    EXPECT_STREQ("65536.00", ScaleFactorText(65535.9999).Text());
    EXPECT_EQ(0.25, ScaleFactorIn(" 0.25 percent"));
    EXPECT_EQ(1.0, ScaleFactorIn(""));
    EXPECT_EQ(1.0, ScaleFactorIn("none"));
}

}  // namespace
}  // namespace clarivex
