// Which media types the plug-in takes, and what it reads out of them.
#include "shell/media_type.h"

#include "tests/support/test.h"
#include "tests/support/video_types.h"

namespace clarivex {
namespace {

constexpr int32_t smallest = std::numeric_limits<int32_t>::min();
constexpr int32_t largest = std::numeric_limits<int32_t>::max();

bool Accepted(VideoInfoType type, StreamSide side = StreamSide::input) {
    return IsAcceptedType(*type.Type(), side, playerFormats);
}

bool AcceptedWith(const std::function<void(VideoInfoType&)>& change) {
    VideoInfoType type(320, 240);
    change(type);
    return Accepted(type);
}

TEST(IsAcceptedType, KnownSubtypesWithBothHeaders) {
    for (const auto& [subtype, pixels, bits] : playerFormats) {
        EXPECT_TRUE(Accepted(VideoInfoType(320, 240, subtype)));
        EXPECT_TRUE(Accepted(VideoInfoType(320, -240, subtype)));
        VideoInfo2Type second(320, 240, subtype);
        second.Bitmap().biBitCount = 24;  // only YV12 in the first header is held to its bit count
        EXPECT_TRUE(IsAcceptedType(*second.Type(), StreamSide::input, playerFormats));
    }
    VideoInfoType packed(320, 240, mediaSubtypeYuy2);
    packed.Bitmap().biBitCount = 24;
    EXPECT_TRUE(Accepted(packed));
}

TEST(IsAcceptedType, FormatBlockMustHoldAHeaderOfAPicture) {
    EXPECT_TRUE(AcceptedWith([](auto& type) { type.formatBytes = 1000; }));
    const std::function<void(VideoInfoType&)> spoilers[] = {
        [](auto& type) { type.majorType.Data4[7] ^= 1; },
        [](auto& type) { type.subtype.Data1 ^= 0x80000000U; },
        [](auto& type) { type.formatType = noGuid; },
        [](auto& type) { type.hasFormat = false; },
        [](auto& type) { type.formatBytes = 87; },
        [](auto& type) { type.formatBytes = 0; },
        [](auto& type) { type.formatType = formatVideoInfo2; },  // 24 bytes short
        [](auto& type) { type.Bitmap().biSize = 39; },
        [](auto& type) { type.Bitmap().biSize = 44; },
        [](auto& type) { type.Bitmap().biBitCount = 16; },
        [](auto& type) { type.Bitmap().biWidth = 0; },
        [](auto& type) { type.Bitmap().biWidth = -320; },
        [](auto& type) { type.Bitmap().biWidth = smallest; },
        [](auto& type) { type.Bitmap().biHeight = 0; },
        [](auto& type) { type.Bitmap().biHeight = smallest; }};
    for (const auto& spoil : spoilers) EXPECT_FALSE(AcceptedWith(spoil)) << &spoil - spoilers;
}

TEST(IsAcceptedType, TargetMustFitAndStandUpright) {
    const auto accepted = [](const RECT& target) { return AcceptedWith([&](auto& type) { type.Target() = target; }); };
    EXPECT_TRUE(accepted({0, 0, 320, 240}));
    EXPECT_TRUE(accepted({100, 100, 420, 340}));  // the extent counts, not the place
    // clang-format off
    const RECT refused[] = {
        {0, 0, 321, 240}, {0, 0, 320, 241}, {-1, 0, 100, 100}, {0, -1, 100, 100}, {50, 0, 49, 100}, {0, 50, 100, 49},
        {smallest, smallest, largest, largest}, {largest, largest, smallest, smallest}};
    // clang-format on
    for (const RECT& target : refused) EXPECT_FALSE(accepted(target)) << target.left << ", " << target.top;
}

// An input has to leave room for the picture that it is enlarged to.
TEST(IsAcceptedType, PicturesBeyondTheFramePathAreRefused) {
    const struct {
        int32_t width, height;
        bool asInput, asOutput;
    } cases[] = {{8192, 8192, true, true},         {43691, 16, true, true},      {16, -43691, true, true},
                 {16384, 16384, false, true},      {43692, 16, false, true},     {16, 43692, false, true},
                 {65536, 16, false, true},         {65537, 16, false, false},    {16, -65537, false, false},
                 {32768, 32768, false, false},     {46341, 46341, false, false}, {65536, 65536, false, false},
                 {largest, largest, false, false}, {largest, 1, false, false},   {1, -largest, false, false}};
    for (const auto& [width, height, asInput, asOutput] : cases) {
        EXPECT_EQ(asInput, Accepted(VideoInfoType(width, height))) << width << " x " << height;
        EXPECT_EQ(asOutput, Accepted(VideoInfoType(width, height), StreamSide::output)) << width << " x " << height;
    }
    VideoInfo2Type type(16384, 4096);
    type.Bitmap().biBitCount = 0xFFFF;
    EXPECT_FALSE(IsAcceptedType(*type.Type(), StreamSide::output, playerFormats)) << "more than 31 bits of image bytes";
}

}  // namespace
}  // namespace clarivex
