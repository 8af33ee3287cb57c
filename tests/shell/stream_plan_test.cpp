// The decisions of a negotiation, from headers and settings to the picture that is offered.
#include "shell/stream_plan.h"

#include <gtest/gtest.h>

#include "shell/plugin_settings.h"

namespace clarivex {
namespace {

VideoHeader Header(int32_t width, int32_t height) {
    VideoHeader header;
    header.bitmap.biWidth = width;
    header.bitmap.biHeight = height;
    header.bitmap.biBitCount = 12;
    return header;
}

constexpr PlanSettings always{.mode = modeAlways, .allowHd = false, .speedGHz = [] { return 0.0F; }};

TEST(PlanStream, TargetMovesToTheCornerAndClipsWhereItLiesInside) {
    struct {
        RECT target;
        int32_t sourceWidth, sourceHeight;
    } const cases[] = {{{10, 20, 300, 230}, 300, 230}, {{0, 0, 8, 8}, 8, 8}, {{0, 0, 321, 0}, 320, 240}};
    for (const auto& [target, sourceWidth, sourceHeight] : cases) {
        StreamPlan plan;
        VideoHeader header = Header(320, 240);
        header.target = target;
        ASSERT_TRUE(PlanStream(always, header, plan));
        EXPECT_EQ(0, header.target.left | header.target.top);
        EXPECT_EQ(target.right, header.target.right);
        EXPECT_EQ(target.bottom, header.target.bottom);
        EXPECT_EQ(sourceWidth, plan.sourceWidth);
        EXPECT_EQ(sourceHeight, plan.sourceHeight);
    }
}

TEST(PlanStream, RefusesHighDefinitionUnlessAllowedAndSidesBelowSixteen) {
    struct {
        int32_t width, height;
        bool allowHd;
        RECT target;
        bool taken, hdAccepted;
    } const cases[] = {{1024, 576, false, {}, false, false}, {1024, 575, false, {}, true, true},
                       {1023, 576, false, {}, true, true},   {1024, 576, false, {0, 0, 640, 360}, true, true},
                       {1920, 1080, true, {}, true, true},   {15, 64, false, {}, false, true},
                       {64, -15, false, {}, false, true}};
    for (const auto& [width, height, allowHd, target, taken, hdAccepted] : cases) {
        PlanSettings settings = always;
        settings.allowHd = allowHd;
        StreamPlan plan;
        plan.scalingOn = true;
        VideoHeader header = Header(width, height);
        header.target = target;
        EXPECT_EQ(taken, PlanStream(settings, header, plan)) << width << " x " << height;
        EXPECT_EQ(taken, plan.scalingOn);
        EXPECT_EQ(hdAccepted, plan.hdAccepted);
    }
}

TEST(PlanStream, NotesPixelAspectAndASecondHeaderWithoutBitRate) {
    struct {
        HeaderKind kind;
        uint32_t bitRate, aspectY;
        bool noted;
        float pixelAspect;
    } const cases[] = {{HeaderKind::videoInfo, 0, 3, false, 0.9375F},
                       {HeaderKind::videoInfo2, 0, 3, true, 0.9375F},
                       {HeaderKind::videoInfo2, 1, 0, false, 1.0F}};
    for (const auto& [kind, bitRate, aspectY, noted, pixelAspect] : cases) {
        StreamPlan plan;
        VideoHeader header = Header(720, 576);
        header.kind = kind;
        header.bitRate = bitRate;
        header.aspectX = 4;
        header.aspectY = aspectY;
        ASSERT_TRUE(PlanStream(always, header, plan));
        EXPECT_EQ(noted, plan.sourceIsVih2WithoutBitrate);
        EXPECT_FLOAT_EQ(pixelAspect, plan.pixelAspect);
    }
}

}  // namespace
}  // namespace clarivex
