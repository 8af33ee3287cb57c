// The media object while frames run through it: its two states, times, buffers good and bad.

#include "shell/size_limits.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/guarded_pages.h"
#include "tests/support/host_stream.h"
#include "tests/support/open_object.h"
#include "tests/support/test.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {
namespace {

constexpr int32_t width = 64;
constexpr int32_t height = 32;
constexpr size_t frameBytes = width * height * 3 / 2;
constexpr size_t enlargedBytes = 96 * 48 * 3 / 2;
constexpr DWORD timeValid = DMO_INPUT_DATA_BUFFERF_TIME;
constexpr DWORD lengthValid = DMO_INPUT_DATA_BUFFERF_TIMELENGTH;
constexpr DWORD syncPoint = DMO_INPUT_DATA_BUFFERF_SYNCPOINT;

class Streaming : public testing::Test, protected OpenTestObject {
protected:
    Streaming() { Negotiate(2); }
    ~Streaming() override { Media().Flush(); }  // the buffers end before the object

    void Negotiate(unsigned mode) {
        ReceivedType offered;
        object.settings->put_CVXMode(mode);
        EXPECT_EQ(S_OK, Media().SetInputType(0, VideoInfoType(width, height).Type(), 0));
        EXPECT_EQ(S_OK, Media().GetOutputType(0, 0, offered.Out()));
        EXPECT_EQ(S_OK, Media().SetOutputType(0, &offered.Get(), 0));
    }

    IMediaObject& Media() { return *object.media; }
    HRESULT Give(DWORD flags = 0, REFERENCE_TIME time = 0, REFERENCE_TIME length = 0) {
        return Media().ProcessInput(0, &in, flags, time, length);
    }
    HRESULT Take() { return Media().ProcessOutput(0, 1, &output, &status); }

    bool Accepts() {
        DWORD flags = 99;
        EXPECT_EQ(S_OK, Media().GetInputStatus(0, &flags));
        EXPECT_LE(flags, 1U);
        return flags == 1;
    }

    testing::AssertionResult KeepsTheInputAfter(HRESULT expected) {
        const HRESULT result = Take();
        if (result != expected || Accepts() || in.references != 2)
            return testing::AssertionFailure() << "result " << std::hex << result << ", references " << in.references;
        return testing::AssertionSuccess();
    }

    GuardedPages inPages{frameBytes};
    GuardedPages outPages{enlargedBytes};
    FakeBuffer in{inPages.Last(frameBytes), 100};
    FakeBuffer out{outPages.Last(enlargedBytes), 7};
    DMO_OUTPUT_DATA_BUFFER output = {&out, 77, 11, 22};
    DWORD status = 55;
};

TEST_F(Streaming, HoldsOneBufferFromInputToOutput) {
    EXPECT_EQ(S_FALSE, Take());  // nothing is held
    EXPECT_EQ(0U, out.length | output.dwStatus | status);
    output.pBuffer = nullptr;
    EXPECT_EQ(S_FALSE, Media().ProcessOutput(0, 1, &output, nullptr));
    output.pBuffer = &out;
    out.lengthsSet = 0;
    EXPECT_TRUE(Accepts());
    EXPECT_EQ(S_OK, Give());
    EXPECT_EQ(DMO_E_NOTACCEPTING, Give());
    EXPECT_EQ(S_OK, Media().Discontinuity(17));
    EXPECT_EQ(S_OK, Media().AllocateStreamingResources());
    EXPECT_FALSE(Accepts());
    EXPECT_EQ(2, in.references);
    EXPECT_EQ(S_OK, Take());
    EXPECT_EQ(0U, status);
    EXPECT_EQ(frameBytes, out.length);  // as of the input type
    EXPECT_EQ(1, out.lengthsSet);
    EXPECT_TRUE(Accepts());
    EXPECT_EQ(1, in.references);
    EXPECT_EQ(1, out.references);
    EXPECT_FALSE(out.HoldsOnly(7));
    EXPECT_TRUE(in.HoldsOnly(100));
    for (auto release : {&IMediaObject::Flush, &IMediaObject::FreeStreamingResources}) {
        ASSERT_EQ(S_OK, Give(timeValid, 5, 0));
        EXPECT_EQ(S_OK, (Media().*release)());
        EXPECT_EQ(1, in.references);
        EXPECT_EQ(S_FALSE, Take());
    }
    ASSERT_EQ(S_OK, Give());
    object = TestObject{};  // its end lets go, too
    EXPECT_EQ(1, in.references);
}

TEST_F(Streaming, TimesPassThroughWhereTheyAreValid) {
    struct {
        DWORD flags;
        REFERENCE_TIME time, length;
    } const cases[] = {{timeValid | lengthValid, -5, 1LL << 40}, {lengthValid, 11, 1LL << 40}, {syncPoint, 11, 22}};
    for (const auto& [flags, time, length] : cases) {
        output = {&out, 0, 11, 22};
        ASSERT_EQ(S_OK, Give(flags, -5, 1LL << 40));
        ASSERT_EQ(S_OK, Take());
        EXPECT_EQ(6U, output.dwStatus);
        EXPECT_EQ(time, output.rtTimestamp);
        EXPECT_EQ(length, output.rtTimelength);
    }
}

TEST_F(Streaming, MissingFailingAndShortBuffersKeepTheInputAndStayUntouched) {
    using Change = std::function<void()>;
    const std::pair<HRESULT, Change> cases[] = {
        {S_FALSE, [&] { output.pBuffer = nullptr; }},
        {E_FAIL, [&] { out.contentResult = E_FAIL, in.contentResult = E_UNEXPECTED; }},
        {E_UNEXPECTED, [&] { in.contentResult = E_UNEXPECTED; }},
        {E_POINTER, [&] { in.givesNull = true; }},
        {E_POINTER, [&] { out.givesNull = true; }},
        {E_INVALIDARG, [&] { out.toldCapacity = enlargedBytes - 1; }},
        {E_INVALIDARG, [&] { out.toldCapacity = 0; }},
        {E_INVALIDARG, [&] { in.toldCapacity = frameBytes - 1; }},
        {E_INVALIDARG, [&] { in.capacityResult = E_NOTIMPL, in.length = frameBytes - 1; }}};
    ASSERT_EQ(S_OK, Give());
    for (const auto& [expected, change] : cases) {
        SCOPED_TRACE(&change - &cases[0].second);
        change();
        EXPECT_TRUE(KeepsTheInputAfter(expected));
        output = {&out, 77, 11, 22};
        for (FakeBuffer* buffer : {&in, &out}) {
            buffer->contentResult = buffer->capacityResult = S_OK;
            buffer->toldCapacity = buffer->length = static_cast<DWORD>(buffer->Bytes().size());
            buffer->givesNull = false;
        }
    }
    EXPECT_TRUE(out.HoldsOnly(7));
    in.capacityResult = out.capacityResult = E_NOTIMPL;  // then the input's length and the output type's size count
    EXPECT_EQ(S_OK, Take());
}

TEST_F(Streaming, TypesChangedInMidFrameAreCheckedAgainstTheBuffers) {
    ASSERT_EQ(S_OK, Give());
    ASSERT_EQ(S_OK, Media().SetInputType(0, nullptr, DMO_SET_TYPEF_CLEAR));
    EXPECT_EQ(S_OK, Take());  // no picture is known: none is made
    EXPECT_TRUE(out.HoldsOnly(7));
    Negotiate(2);
    ASSERT_EQ(S_OK, Give());
    ASSERT_EQ(S_OK, Media().SetOutputType(0, VideoInfoType(640, 480).Type(), 0));
    EXPECT_TRUE(KeepsTheInputAfter(E_INVALIDARG));
    for (const GUID& subtype : {mediaSubtypeYv12, mediaSubtypeYuy2}) {  // smaller than the picture
        ASSERT_EQ(S_OK, Media().SetOutputType(0, VideoInfoType(16, 16, subtype).Type(), 0));
        Give();
        Take();
    }
}

TEST_F(Streaming, StartsAnewOnceAfterEverySetInputTypeWhateverItsResult) {
    VideoInfoType good(width, height), empty(0, 0);
    const std::function<HRESULT()> calls[] = {
        [&] { return Media().SetInputType(0, good.Type(), 0); },
        [&] { return Media().SetInputType(0, good.Type(), DMO_SET_TYPEF_TEST_ONLY); },
        [&] { return Media().SetInputType(0, empty.Type(), 0); }, [&] { return Media().SetInputType(5, nullptr, 0); }};
    for (const auto& call : calls) {
        call();
        EXPECT_TRUE(open->NextRequest().newStream) << "call " << &call - calls;
        EXPECT_EQ(S_OK, Media().SetOutputType(0, good.Type(), 0));
        EXPECT_FALSE(open->NextRequest().newStream);
    }
}

// Whether a frame designs its filters anew shows in a tap set that the test has spoilt.
TEST_F(Streaming, FiltersFollowTheSharpnessAndTheSizeAndNothingElse) {
    const auto frameDesignsFilters = [this] {
        TapSet& taps = open->Stream().engine.taps.horizontal.a = {};
        EXPECT_EQ(S_OK, Give());
        EXPECT_EQ(S_OK, Take());
        return taps != TapSet{};
    };
    EXPECT_TRUE(frameDesignsFilters());
    object.settings->put_EnableLighting(FALSE);
    EXPECT_FALSE(frameDesignsFilters());
    object.settings->put_Sharpness(0.5F);
    object.player->SetEnable(FALSE);
    EXPECT_FALSE(frameDesignsFilters());  // copied, not enhanced
    object.player->SetEnable(TRUE);
    EXPECT_TRUE(frameDesignsFilters());
    ReceivedType offered;
    object.settings->put_CVXMode(0);  // the same stream kept at its size
    EXPECT_EQ(S_OK, Media().GetOutputType(0, 0, offered.Out()));
    EXPECT_TRUE(frameDesignsFilters());
    EXPECT_FALSE(frameDesignsFilters());
}

TEST_F(Streaming, AFrameIsAskedForAsItWasNegotiatedAndSet) {
    VideoInfo2Type type(96, 80, mediaSubtypeYuy2);
    type.Target() = {10, 20, 64, 50};
    type.Bitmap().biXPelsPerMeter = 3;
    type.header.dwPictAspectRatioX = 3;
    type.header.dwPictAspectRatioY = 2;
    ReceivedType offered;
    ASSERT_EQ(S_OK, Media().SetInputType(0, type.Type(), 0));
    ASSERT_EQ(S_OK, Media().GetOutputType(0, 0, offered.Out()));
    ASSERT_EQ(S_OK, Media().SetOutputType(0, &offered.Get(), 0));
    FrameRequest expected;
    expected.format = PixelFormat::yuy2;
    expected.input = expected.source = {true, 96, 80, 16, 3, {10, 20, 64, 50}};
    expected.output = {true, 144, 120, 16, 3, {0, 0, 64, 50}};  // the rectangle moves to the corner
    expected.sourceWidth = 64;
    expected.sourceHeight = 50;
    expected.scalingOn = expected.sourceIsVih2WithoutBitrate = true;
    expected.pixelAspect = 0.8F;  // 1 / (3:2 / 96 · 80)
    expected.newStream = expected.settingsDirty = true;
    EXPECT_EQ(expected, open->NextRequest());
    expected.newStream = expected.settingsDirty = false;
    EXPECT_EQ(expected, open->NextRequest());

    type.header.dwBitRate = 1;  // an input type that comes after the offer
    type.Bitmap().biWidth = 98;
    ASSERT_EQ(S_OK, Media().SetInputType(0, type.Type(), 0));
    object.settings->put_Sharpness(1.75F);
    object.settings->put_EnableLighting(0);
    object.player->SetEnable(FALSE);
    expected.input.width = 98;
    expected.sharpness = 1.75F;
    expected.enableLighting = expected.enabled = false;
    expected.newStream = expected.settingsDirty = true;
    EXPECT_EQ(expected, open->NextRequest());

    type.header.dwPictAspectRatioY = 0;  // not stated
    type.Target() = {0, 0, 0, 81};       // no width, and a height that is not the picture's
    ASSERT_EQ(DMO_E_TYPE_NOT_ACCEPTED, Media().SetInputType(0, type.Type(), 0));
    type.Target() = {0, 10, 0, 81};
    ASSERT_EQ(S_OK, Media().SetInputType(0, type.Type(), 0));
    ASSERT_EQ(S_OK, Media().GetOutputType(0, 0, offered.Out()));
    const FrameRequest last = open->NextRequest();
    EXPECT_EQ(std::tuple(98, 80, 1.0F, false),
              std::tuple(last.sourceWidth, last.sourceHeight, last.pixelAspect, last.sourceIsVih2WithoutBitrate));
}

// The last sample of a flat picture; one that is too large stands in the corner of a black one.
TEST(SizeLimits, AreThoseOfTheMomentAnObjectWasMade) {
    const auto lastSample = [](bool lifted) {
        LiftSizeLimits(lifted);
        TestObject object;
        LiftSizeLimits(!lifted);
        object.settings->put_EnableLighting(0);
        Negotiate(object, mediaSubtypeYv12, {2048, 16}, alwaysEnlarged);
        FakeBuffer in(2048 * 16 * 3 / 2, 150), out(3072 * 24 * 3 / 2, 7);
        EXPECT_EQ(S_OK, PlayFrame(object, in, out));
        return out.Bytes()[3072 * 24 - 1];
    };
    EXPECT_GT(lastSample(true), 120);
    EXPECT_LT(lastSample(false), 40);
    LiftSizeLimits(false);
}

}  // namespace
}  // namespace clarivex
