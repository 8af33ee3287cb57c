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

float NeverAsked() {
    ADD_FAILURE() << "the speed is of no use in this mode";
    return 1.0F;
}

constexpr PlanSettings always{.mode = modeAlways, .allowHd = false, .speedGHz = NeverAsked};
constexpr PlanSettings never{.mode = modeNever, .allowHd = false, .speedGHz = NeverAsked};

struct OfferCase {
    int32_t width, height;
    int32_t enlargedWidth, enlargedHeight;
};

TEST(PlanStream, EnlargesByThreeHalvesInEightsAndKeepsTheSizeOtherwise) {
    for (const OfferCase& size : {OfferCase{640, 480, 960, 720},
                                  {352, 288, 528, 432},
                                  {100, 100, 152, 150},
                                  {16, 16, 24, 24},
                                  {100, 101, 152, 150},
                                  {17, 17, 32, 24}}) {
        StreamPlan plan;
        VideoHeader header = Header(size.width, size.height);
        ASSERT_TRUE(PlanStream(always, header, plan));
        EXPECT_TRUE(plan.scalingOn);
        EXPECT_EQ(size.enlargedWidth, header.bitmap.biWidth);
        EXPECT_EQ(size.enlargedHeight, header.bitmap.biHeight);
        EXPECT_EQ(static_cast<DWORD>(size.enlargedWidth * size.enlargedHeight * 12 / 8), header.bitmap.biSizeImage);

        header = Header(size.width, size.height);
        ASSERT_TRUE(PlanStream(never, header, plan));
        EXPECT_FALSE(plan.scalingOn);
        EXPECT_EQ(size.width, header.bitmap.biWidth);
        EXPECT_EQ(size.height, header.bitmap.biHeight);
    }
}

TEST(PlanStream, KeepsTheSignOfTheHeightAndMovesTheTargetToTheCorner) {
    StreamPlan plan;
    VideoHeader header = Header(320, -240);
    header.target = {10, 20, 300, 230};
    ASSERT_TRUE(PlanStream(always, header, plan));
    EXPECT_EQ(-360, header.bitmap.biHeight);
    EXPECT_EQ(0, header.target.left);
    EXPECT_EQ(0, header.target.top);
    EXPECT_EQ(300, header.target.right);
    EXPECT_EQ(230, header.target.bottom);
    EXPECT_EQ(300, plan.sourceWidth);
    EXPECT_EQ(230, plan.sourceHeight);
}

TEST(PlanStream, TargetEdgesAtNothingOrBeyondThePictureDoNotClip) {
    StreamPlan plan;
    VideoHeader header = Header(320, 240);
    header.target = {0, 0, 321, 0};
    ASSERT_TRUE(PlanStream(never, header, plan));
    EXPECT_EQ(320, plan.sourceWidth);
    EXPECT_EQ(240, plan.sourceHeight);
}

TEST(PlanStream, HighDefinitionIsRefusedFrom1024By576OnUnlessAllowed) {
    StreamPlan plan;
    VideoHeader header = Header(1024, 576);
    plan.scalingOn = true;
    EXPECT_FALSE(PlanStream(always, header, plan));
    EXPECT_FALSE(plan.hdAccepted);
    EXPECT_FALSE(plan.scalingOn);
    EXPECT_EQ(1024, plan.sourceWidth);

    header = Header(1024, 575);
    EXPECT_TRUE(PlanStream(always, header, plan));
    EXPECT_TRUE(plan.hdAccepted);

    header = Header(1024, 576);
    header.target = {0, 0, 640, 360};
    EXPECT_TRUE(PlanStream(always, header, plan));

    PlanSettings allowing = always;
    allowing.allowHd = true;
    header = Header(1920, 1080);
    EXPECT_TRUE(PlanStream(allowing, header, plan));
}

TEST(PlanStream, SidesBelowSixteenAreRefusedByTheHeaderNotTheTarget) {
    StreamPlan plan;
    for (auto [width, height] : {std::pair{15, 64}, {64, 15}, {64, -15}}) {
        VideoHeader header = Header(width, height);
        EXPECT_FALSE(PlanStream(always, header, plan));
        EXPECT_FALSE(plan.scalingOn);
        EXPECT_TRUE(plan.hdAccepted);
    }
    VideoHeader header = Header(64, 64);
    header.target = {0, 0, 8, 8};
    EXPECT_TRUE(PlanStream(always, header, plan));
    EXPECT_EQ(8, plan.sourceWidth);
}

TEST(PlanStream, EveryOtherModeWeighsSpeedAgainstArea) {
    for (uint32_t mode : {modeAuto, 3U, 7U, 0xFFFFFFFFU}) {
        StreamPlan plan;
        VideoHeader header = Header(640, 480);
        ASSERT_TRUE(PlanStream({.mode = mode, .speedGHz = [] { return 1.89F; }}, header, plan));
        EXPECT_TRUE(plan.scalingOn);
        header = Header(640, 480);
        ASSERT_TRUE(PlanStream({.mode = mode, .speedGHz = [] { return 1.88F; }}, header, plan));
        EXPECT_FALSE(plan.scalingOn);
        EXPECT_EQ(640, header.bitmap.biWidth);
    }
}

TEST(PlanStream, PixelAspectFollowsFromThePictureAspect) {
    StreamPlan plan;
    VideoHeader header = Header(720, 576);
    ASSERT_TRUE(PlanStream(never, header, plan));
    EXPECT_EQ(1.0F, plan.pixelAspect);

    header = Header(720, 576);
    header.kind = HeaderKind::videoInfo2;
    header.aspectX = 4;
    header.aspectY = 3;
    ASSERT_TRUE(PlanStream(never, header, plan));
    EXPECT_FLOAT_EQ(0.9375F, plan.pixelAspect);

    header.aspectY = 0;
    ASSERT_TRUE(PlanStream(never, header, plan));
    EXPECT_EQ(1.0F, plan.pixelAspect);
}

TEST(PlanStream, NotesASecondHeaderWithoutBitRate) {
    StreamPlan plan;
    for (auto [kind, bitRate, noted] : {std::tuple{HeaderKind::videoInfo, 0, false},
                                        {HeaderKind::videoInfo2, 0, true},
                                        {HeaderKind::videoInfo2, 1, false}}) {
        VideoHeader header = Header(64, 64);
        header.kind = kind;
        header.bitRate = static_cast<DWORD>(bitRate);
        ASSERT_TRUE(PlanStream(never, header, plan));
        EXPECT_EQ(noted, plan.sourceIsVih2WithoutBitrate);
    }
}

}  // namespace
}  // namespace clarivex
