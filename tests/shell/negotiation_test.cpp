// The media object before its first frame, through its interfaces.

#include "shell/media_type.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {
namespace {

constexpr DWORD testOnly = DMO_SET_TYPEF_TEST_ONLY;
constexpr DWORD clear = DMO_SET_TYPEF_CLEAR;

class Negotiation : public testing::Test {
protected:
    Negotiation() { object.settings->put_CVXMode(2); }

    IMediaObject& Media() { return *object.media; }

    template <class Type>
    HRESULT SetInput(Type type, DWORD flags = 0) {
        return Media().SetInputType(0, type.Type(), flags);
    }
    template <class Type>
    HRESULT SetOutput(Type type, DWORD flags = 0) {
        return Media().SetOutputType(0, type.Type(), flags);
    }
    HRESULT Offer() { return Media().GetOutputType(0, 0, offered.Out()); }

    TestObject object;
    ReceivedType offered;
};

TEST_F(Negotiation, ArgumentsAreTestedInOrderAndTheStreamsAreOneEach) {
    DWORD word = 0;
    DMO_MEDIA_TYPE type = {};
    FakeBuffer buffer(10);
    DMO_OUTPUT_DATA_BUFFER output = {&buffer, 77, 0, 0};
    constexpr HRESULT badIndex = DMO_E_INVALIDSTREAMINDEX, notSet = DMO_E_TYPE_NOT_SET, noMore = DMO_E_NO_MORE_ITEMS;
    IMediaObject& media = Media();
    // clang-format off
    const struct { HRESULT expected, ofInput, ofOutput; } calls[] = {
        {E_POINTER, media.GetStreamCount(nullptr, &word), media.GetStreamCount(&word, nullptr)},
        {E_POINTER, media.GetInputStreamInfo(1, nullptr), media.GetOutputStreamInfo(1, nullptr)},
        {badIndex,  media.GetInputStreamInfo(1, &word), media.GetOutputStreamInfo(1, &word)},
        {badIndex,  media.GetInputType(1, 9, nullptr), media.GetOutputType(1, 9, nullptr)},
        {noMore,    media.GetInputType(0, 3, nullptr), media.GetOutputType(0, 3, nullptr)},
        {S_OK,      media.GetInputType(0, 2, nullptr), media.GetOutputType(0, 2, nullptr)},
        {badIndex,  media.SetInputType(1, nullptr, clear), media.SetOutputType(1, nullptr, clear)},
        {E_POINTER, media.SetInputType(0, nullptr, testOnly), media.SetOutputType(0, nullptr, 0)},
        {badIndex,  media.GetInputCurrentType(1, nullptr), media.GetOutputCurrentType(1, nullptr)},
        {E_POINTER, media.GetInputCurrentType(0, nullptr), media.GetOutputCurrentType(0, nullptr)},
        {notSet,    media.GetInputCurrentType(0, &type), media.GetOutputCurrentType(0, &type)},
        {badIndex,  media.GetInputSizeInfo(1, nullptr, nullptr, nullptr), media.GetOutputSizeInfo(1, nullptr, nullptr)},
        {E_POINTER, media.GetInputSizeInfo(0, nullptr, &word, &word), media.GetOutputSizeInfo(0, nullptr, &word)},
        {E_POINTER, media.GetInputSizeInfo(0, &word, nullptr, &word), media.GetOutputSizeInfo(0, &word, nullptr)},
        {E_POINTER, media.GetInputSizeInfo(0, &word, &word, nullptr), media.GetInputStatus(0, nullptr)},
        {notSet,    media.GetInputSizeInfo(0, &word, &word, &word), media.GetOutputSizeInfo(0, &word, &word)},
        {E_NOTIMPL, media.GetInputMaxLatency(0, nullptr), media.SetInputMaxLatency(0, 1)},
        {badIndex,  media.GetInputStatus(1, nullptr), media.GetInputStatus(1, &word)},
        {badIndex,  media.ProcessInput(1, nullptr, 0, 0, 0), badIndex},
        {E_POINTER, media.ProcessInput(0, nullptr, 0, 0, 0), media.ProcessOutput(0, 2, nullptr, &word)},
        {E_INVALIDARG, media.ProcessOutput(0, 0, &output, &word), media.ProcessOutput(0, 2, &output, &word)},
        {notSet,    media.ProcessInput(0, &buffer, 0, 0, 0), media.ProcessOutput(0, 1, &output, &word)}};
    // clang-format on
    for (const auto& call : calls)
        EXPECT_EQ(std::pair(call.expected, call.expected), std::pair(call.ofInput, call.ofOutput)) << &call - calls;
    EXPECT_EQ(std::tuple(1, 0, 77U, 0U),
              std::tuple(buffer.references.load(), buffer.lengthsSet, output.dwStatus, word));
    DWORD inputs = 0, outputs = 0, inputFlags = 0, outputFlags = 0;
    EXPECT_EQ(S_OK, Media().GetStreamCount(&inputs, &outputs));
    EXPECT_EQ(S_OK, Media().GetInputStreamInfo(0, &inputFlags));
    EXPECT_EQ(S_OK, Media().GetOutputStreamInfo(0, &outputFlags));
    EXPECT_EQ(std::tuple(1U, 1U, 11U, 3U), std::tuple(inputs, outputs, inputFlags, outputFlags));
}

TEST_F(Negotiation, InputTypesAreListedUntilOneIsSet) {
    const std::array<GUID, 3> subtypes = {mediaSubtypeYv12, mediaSubtypeYuy2, mediaSubtypeIyuv};
    ReceivedType type;
    for (DWORD i = 0; i < 3; ++i) {
        ASSERT_EQ(S_OK, Media().GetInputType(0, i, type.Out()));
        EXPECT_TRUE(IsEqualGUID(mediaTypeVideo, type.Get().majortype));
        EXPECT_TRUE(IsEqualGUID(subtypes[i], type.Get().subtype));
        EXPECT_TRUE(IsEqualGUID(noGuid, type.Get().formattype));
        EXPECT_EQ(nullptr, type.Get().pbFormat);
    }
    ASSERT_EQ(S_OK, SetInput(VideoInfoType(320, 240, mediaSubtypeIyuv)));
    for (DWORD i = 0; i < 3; ++i) {
        ASSERT_EQ(S_OK, Media().GetInputType(0, i, type.Out()));
        EXPECT_TRUE(IsEqualGUID(mediaSubtypeIyuv, type.Get().subtype));
        EXPECT_EQ(320, type.As<VIDEOINFOHEADER>().bmiHeader.biWidth);
    }
}

TEST_F(Negotiation, NothingIsOfferedBeforeAnInputTypeIsSet) {
    EXPECT_EQ(DMO_E_TYPE_NOT_ACCEPTED, Offer());
    EXPECT_EQ(DMO_E_TYPE_NOT_ACCEPTED, SetOutput(VideoInfoType(320, 240)));
    EXPECT_EQ(S_FALSE, SetOutput(VideoInfoType(320, 240), testOnly));
}

TEST_F(Negotiation, OfferIsTheInputTypeWithTheEnlargedPictureAtEveryIndex) {
    VideoInfo2Type input(640, -480, mediaSubtypeYuy2);
    input.formatBytes = sizeof(VIDEOINFOHEADER2) + 5;  // what stands behind the header goes along
    input.header.dwInterlaceFlags = 1;
    input.header.dwBitRate = 1000;
    input.header.rcSource = {1, 2, 3, 4};
    input.Target() = {0, 0, 640, 480};
    ASSERT_EQ(S_OK, SetInput(input));
    for (DWORD i = 0; i < 3; ++i) {
        ASSERT_EQ(S_OK, Media().GetOutputType(0, i, offered.Out()));
        EXPECT_TRUE(object.ScalingActive());
        EXPECT_TRUE(IsEqualGUID(mediaSubtypeYuy2, offered.Get().subtype));
        EXPECT_EQ(input.Type()->lSampleSize, offered.Get().lSampleSize);
        EXPECT_EQ(sizeof(VIDEOINFOHEADER2) + 5, offered.Get().cbFormat);
        const auto header = offered.As<VIDEOINFOHEADER2>();
        EXPECT_EQ(960, header.bmiHeader.biWidth);
        EXPECT_EQ(-720, header.bmiHeader.biHeight);
        EXPECT_EQ(960U * 720 * 2, header.bmiHeader.biSizeImage);
        EXPECT_EQ(640, header.rcTarget.right);
        EXPECT_EQ(4, header.rcSource.bottom);
        EXPECT_EQ(0U, header.dwInterlaceFlags);
    }
}

TEST_F(Negotiation, HighDefinitionUnlessAllowedAndSidesBelowSixteenAreRefusedAndSwitchScalingOff) {
    struct {
        int32_t width, height;
        bool allowHd;
        RECT target;
        bool taken;
    } const cases[] = {{1024, 576, false, {}, false}, {1024, 575, false, {}, true},
                       {1023, 576, false, {}, true},  {1024, 576, false, {0, 0, 640, 360}, true},
                       {1920, 1080, true, {}, true},  {15, 64, false, {}, false},
                       {64, -15, false, {}, false}};
    for (const auto& [width, height, allowHd, target, taken] : cases) {
        EXPECT_EQ(S_OK, SetInput(VideoInfoType(64, 64)));
        EXPECT_EQ(S_OK, Offer());
        EXPECT_TRUE(object.ScalingActive());
        VideoInfoType type(width, height);
        type.Target() = target;
        object.settings->put_AllowHD(allowHd);
        EXPECT_EQ(S_OK, SetInput(type));
        EXPECT_EQ(taken ? S_OK : DMO_E_TYPE_NOT_ACCEPTED, Offer()) << width << " x " << height;
        EXPECT_EQ(taken, object.ScalingActive()) << width << " x " << height;
    }
    EXPECT_EQ(S_OK, SetInput(VideoInfoType(64, 64)));
    EXPECT_EQ(S_OK, Media().GetOutputType(0, 0, nullptr));
    EXPECT_FALSE(object.ScalingActive()) << "a question without a type decides nothing";
    EXPECT_EQ(S_OK, Offer());
    EXPECT_EQ(S_OK, Media().SetInputType(0, nullptr, clear));
    EXPECT_EQ(DMO_E_TYPE_NOT_ACCEPTED, Offer());
    EXPECT_FALSE(object.ScalingActive());
}

TEST_F(Negotiation, FlagsTestWithoutStoring) {
    ReceivedType type;
    EXPECT_EQ(S_OK, SetInput(VideoInfoType(320, 240), testOnly));
    EXPECT_EQ(S_OK, SetInput(VideoInfoType(320, 240), 4));
    EXPECT_EQ(S_FALSE, SetInput(VideoInfoType(0, 240), testOnly));
    EXPECT_EQ(DMO_E_TYPE_NOT_ACCEPTED, SetInput(VideoInfoType(0, 240), 4));
    EXPECT_EQ(DMO_E_TYPE_NOT_ACCEPTED, SetInput(VideoInfoType(0, 240)));
    EXPECT_EQ(DMO_E_TYPE_NOT_SET, Media().GetInputCurrentType(0, type.Out()));

    ASSERT_EQ(S_OK, SetInput(VideoInfoType(320, 240)));
    EXPECT_EQ(DMO_E_TYPE_NOT_ACCEPTED, SetInput(VideoInfoType(0, 240)));  // keeps the old one
    EXPECT_EQ(S_OK, Media().GetInputCurrentType(0, type.Out()));
    auto* held = const_cast<DMO_MEDIA_TYPE*>(&type.Get());
    EXPECT_EQ(S_OK, Media().GetInputCurrentType(0, held));  // a leak here is one for the leak checker
    EXPECT_EQ(S_OK, SetOutput(VideoInfoType(320, 240), testOnly));
    EXPECT_EQ(DMO_E_TYPE_NOT_SET, Media().GetOutputCurrentType(0, type.Out()));
}

TEST_F(Negotiation, SizesFollowFromTheTypesUntilTheyAreCleared) {
    DWORD size = 0;
    DWORD lookahead = 9;
    DWORD alignment = 0;
    VideoInfoType input(33, -10);
    input.Bitmap().biSizeImage = 1;  // what it says of itself does not count
    ASSERT_EQ(S_OK, SetInput(input));
    ASSERT_EQ(S_OK, SetOutput(VideoInfoType(64, 16, mediaSubtypeYuy2)));
    EXPECT_EQ(S_OK, Media().GetInputSizeInfo(0, &size, &lookahead, &alignment));
    EXPECT_EQ(52U * 10, size);  // 396 bits a row, rounded up to 416
    EXPECT_EQ(0U, lookahead);
    EXPECT_EQ(1U, alignment);
    EXPECT_EQ(S_OK, Media().GetOutputSizeInfo(0, &size, &alignment));
    EXPECT_EQ(64U * 16 * 2, size);
    EXPECT_EQ(1U, alignment);
    auto* nowhere = reinterpret_cast<const DMO_MEDIA_TYPE*>(4);  // needs no type and wins over the test flag
    EXPECT_EQ(S_OK, Media().SetOutputType(0, nowhere, clear | testOnly));
    EXPECT_EQ(S_OK, Media().SetInputType(0, nowhere, clear));
    EXPECT_EQ(DMO_E_TYPE_NOT_SET, Media().GetInputCurrentType(0, offered.Out()));
    EXPECT_EQ(DMO_E_TYPE_NOT_SET, Media().GetOutputCurrentType(0, offered.Out()));
}

}  // namespace
}  // namespace clarivex
