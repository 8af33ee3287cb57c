// Which media types the plug-in takes, and what it reads out of them.
#include "shell/media_type.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "tests/support/video_types.h"

namespace clarivex {
namespace {

constexpr int32_t smallest = std::numeric_limits<int32_t>::min();
constexpr int32_t largest = std::numeric_limits<int32_t>::max();

bool Accepted(VideoInfoType type, StreamSide side = StreamSide::input) { return IsAcceptedType(*type.Type(), side); }

bool AcceptedWith(const std::function<void(VideoInfoType&)>& change) {
    VideoInfoType type(320, 240);
    change(type);
    return Accepted(type);
}

bool TargetAccepted(const RECT& target) {
    return AcceptedWith([&](auto& type) { type.Target() = target; });
}

TEST(IsAcceptedType, KnownSubtypesWithBothHeaders) {
    for (const GUID& subtype : offeredSubtypes) {
        EXPECT_TRUE(Accepted(VideoInfoType(320, 240, subtype)));
        EXPECT_TRUE(Accepted(VideoInfoType(320, -240, subtype)));
        VideoInfo2Type second(320, 240, subtype);
        EXPECT_TRUE(IsAcceptedType(*second.Type(), StreamSide::input));
    }
}

TEST(IsAcceptedType, OnlyYv12InTheFirstHeaderIsHeldToItsBitCount) {
    EXPECT_FALSE(AcceptedWith([](auto& type) { type.Bitmap().biBitCount = 16; }));
    VideoInfo2Type second(320, 240);
    second.Bitmap().biBitCount = 16;
    EXPECT_TRUE(IsAcceptedType(*second.Type(), StreamSide::input));
    VideoInfoType packed(320, 240, mediaSubtypeYuy2);
    packed.Bitmap().biBitCount = 24;
    EXPECT_TRUE(Accepted(packed));
}

TEST(IsAcceptedType, OtherIdentifiersAreRefusedInEveryByte) {
    for (auto field : {&VideoInfoType::majorType, &VideoInfoType::subtype, &VideoInfoType::formatType}) {
        EXPECT_FALSE(AcceptedWith([&](auto& type) { (type.*field).Data4[7] ^= 1; }));
        EXPECT_FALSE(AcceptedWith([&](auto& type) { (type.*field).Data1 ^= 0x80000000U; }));
        EXPECT_FALSE(AcceptedWith([&](auto& type) { type.*field = noGuid; }));
    }
}

TEST(IsAcceptedType, FormatBlockMustHoldItsHeader) {
    EXPECT_FALSE(AcceptedWith([](auto& type) { type.hasFormat = false; }));
    EXPECT_FALSE(AcceptedWith([](auto& type) { type.formatBytes = 87; }));
    EXPECT_FALSE(AcceptedWith([](auto& type) { type.formatBytes = 0; }));
    EXPECT_TRUE(AcceptedWith([](auto& type) { type.formatBytes = 1000; }));
    EXPECT_FALSE(AcceptedWith([](auto& type) { type.formatType = formatVideoInfo2; }));  // 24 bytes short

    VideoInfoType type(320, 240);
    DMO_MEDIA_TYPE lying = *type.Type();
    lying.pbFormat = nullptr;
    EXPECT_FALSE(IsAcceptedType(lying, StreamSide::input));
}

TEST(IsAcceptedType, HeaderMustDescribeAPicture) {
    EXPECT_FALSE(AcceptedWith([](auto& type) { type.Bitmap().biSize = 39; }));
    EXPECT_FALSE(AcceptedWith([](auto& type) { type.Bitmap().biSize = 44; }));
    for (int32_t width : {0, -1, -320, smallest}) {
        EXPECT_FALSE(Accepted(VideoInfoType(width, 240))) << width;
    }
    for (int32_t height : {0, smallest}) {
        EXPECT_FALSE(Accepted(VideoInfoType(320, height))) << height;
    }
}

TEST(IsAcceptedType, TargetMustFitAndStandUpright) {
    EXPECT_TRUE(TargetAccepted({0, 0, 320, 240}));
    EXPECT_TRUE(TargetAccepted({100, 100, 420, 340}));  // the extent counts, not the place
    EXPECT_FALSE(TargetAccepted({0, 0, 321, 240}));
    EXPECT_FALSE(TargetAccepted({0, 0, 320, 241}));
    EXPECT_FALSE(TargetAccepted({-1, 0, 100, 100}));
    EXPECT_FALSE(TargetAccepted({0, -1, 100, 100}));
    EXPECT_FALSE(TargetAccepted({50, 0, 49, 100}));
    EXPECT_FALSE(TargetAccepted({0, 50, 100, 49}));
    EXPECT_FALSE(TargetAccepted({smallest, smallest, largest, largest}));
    EXPECT_FALSE(TargetAccepted({largest, largest, smallest, smallest}));
    EXPECT_FALSE(TargetAccepted({0, 0, largest, largest}));
}

TEST(IsAcceptedType, PicturesBeyondTheFramePathAreRefused) {
    for (auto [width, height] : {std::pair{largest, largest},
                                 {largest, 1},
                                 {1, largest},
                                 {1, -largest},
                                 {65537, 16},
                                 {65536, 65536},
                                 {32768, 32768},
                                 {46341, 46341},
                                 {16, -65537}}) {
        EXPECT_FALSE(Accepted(VideoInfoType(width, height))) << width << " x " << height;
        EXPECT_FALSE(Accepted(VideoInfoType(width, height), StreamSide::output)) << width << " x " << height;
    }
}

TEST(IsAcceptedType, InputsMustLeaveRoomForTheEnlargedPicture) {
    EXPECT_TRUE(Accepted(VideoInfoType(8192, 8192)));
    const VideoInfoType enlargedTooFar(16384, 16384);
    EXPECT_FALSE(Accepted(enlargedTooFar));
    EXPECT_TRUE(Accepted(enlargedTooFar, StreamSide::output));
    const VideoInfoType enlargedTooWide(44000, 16);
    EXPECT_FALSE(Accepted(enlargedTooWide));
    EXPECT_TRUE(Accepted(enlargedTooWide, StreamSide::output));
}

TEST(IsAcceptedType, ImageBytesMustFit31Bits) {
    VideoInfo2Type type(16384, 4096);
    type.Bitmap().biBitCount = 0xFFFF;
    EXPECT_FALSE(IsAcceptedType(*type.Type(), StreamSide::output));
    type.Bitmap().biBitCount = 32;
    EXPECT_TRUE(IsAcceptedType(*type.Type(), StreamSide::output));
}

TEST(ImageBytes, CountRowsInWholeWordsAndIgnoreTheStatedSize) {
    VideoInfoType type(33, 10);
    type.Bitmap().biSizeImage = 1;
    EXPECT_EQ(52U * 10, ImageBytes(*type.Type()));  // 396 bits, rounded up to 416
    type.Bitmap().biHeight = -10;
    EXPECT_EQ(52U * 10, ImageBytes(*type.Type()));
    type.formatType = noGuid;
    EXPECT_EQ(0U, ImageBytes(*type.Type()));
}

TEST(FormatOf, PassesTheHeaderOnAsItStands) {
    VideoInfo2Type type(320, -240, mediaSubtypeYuy2);
    type.Bitmap().biXPelsPerMeter = 7;
    type.Target() = {1, 2, 3, 4};
    const ImageFormat format = FormatOf(*type.Type());
    EXPECT_TRUE(format.readable);
    EXPECT_EQ(320, format.width);
    EXPECT_EQ(-240, format.height);
    EXPECT_EQ(16, format.bitCount);
    EXPECT_EQ(7, format.xPelsPerMeter);
    EXPECT_EQ(1, format.target.left);
    EXPECT_EQ(2, format.target.top);
    EXPECT_EQ(3, format.target.right);
    EXPECT_EQ(4, format.target.bottom);
    EXPECT_FALSE(FormatOf({}).readable);
}

TEST(MediaTypeOwner, KeepsItsOwnCopyAndNothingAfterClear) {
    MediaType owner;
    EXPECT_FALSE(owner.IsSet());
    VideoInfoType type(320, 240);
    ASSERT_EQ(S_OK, owner.Assign(*type.Type()));
    const BYTE* first = owner.Get().pbFormat;
    EXPECT_NE(type.Type()->pbFormat, first);
    ASSERT_EQ(S_OK, owner.Assign(owner.Get()));  // itself
    EXPECT_EQ(320, FormatOf(owner.Get()).width);
    owner.Clear();
    EXPECT_FALSE(owner.IsSet());
    EXPECT_EQ(nullptr, owner.Get().pbFormat);
}

}  // namespace
}  // namespace clarivex
