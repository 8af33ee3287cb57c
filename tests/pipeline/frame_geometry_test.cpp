#include "pipeline/frame_geometry.h"

#include "tests/support/stream_setup.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr size_t plenty = size_t{1} << 28;

FrameRequest Stream(PixelFormat format, int32_t width, int32_t height, bool scalingOn) {
    return scalingOn ? StreamOf(format, width, height, (width * 3 / 2 + 7) & ~7, (height & ~1) * 3 / 2)
                     : StreamOf(format, width, height, width, height);
}

// Lays a frame out in buffers that are never touched.
struct Trial {
    HRESULT code;
    FrameLayout layout;
    const uint8_t* input;
    uint8_t* output;

    explicit Trial(const FrameRequest& request, size_t inputBytes = plenty, size_t outputBytes = plenty)
        : input(reinterpret_cast<const uint8_t*>(uintptr_t{0x10000000})),
          output(reinterpret_cast<uint8_t*>(uintptr_t{0x30000000})) {
        code = LayOutFrame(request, {output, outputBytes}, {input, inputBytes}, layout);
    }
};

TEST(LayOutFrame, FollowsTheRectangleIntoThePicture) {
    FrameRequest request = Stream(PixelFormat::yuy2, 64, 32, false);
    request.input.target = {4, 3, 64, 32};
    EXPECT_EQ(Trial(request).layout.input.luma.data - Trial(request).input, 3 * 128 + 8);
    for (const PictureRect& empty : {PictureRect{4, 32, 64, 32}, {64, 3, 64, 32}}) {
        request.input.target = empty;
        EXPECT_EQ(Trial(request).layout.input.luma.data, Trial(request).input);
    }

    FrameRequest planar = Stream(PixelFormat::yv12, 64, 32, false);
    planar.output.target = {8, 2, 64, 32};
    EXPECT_EQ(Trial(planar).layout.output.luma.data - Trial(planar).output, 2 * 64 + 12);
    planar.output.target = {-8, 0, 64, 32};
    EXPECT_EQ(Trial(planar).code, E_INVALIDARG);
}

TEST(LocateInput, TakesTheSourceTypesHeightWhenScaling) {
    FrameRequest request = Stream(PixelFormat::yv12, 64, 32, true);
    request.source.height = -40;
    EXPECT_EQ(LocateInput(request).height, 40);
    request.scalingOn = false;
    EXPECT_EQ(LocateInput(request).height, 32);
}

// A decoder that writes into a buffer negotiated at the output's size: 64 columns of a type 96 wide.
TEST(LocateInput, ChoosesTheStrideOfAStretchedDecoder) {
    constexpr PictureRect rectangle{0, 0, 64, 32}, none{};
    const struct {
        const char* why;
        PixelFormat format;
        int32_t typeWidth, sourceWidth, resolution;
        PictureRect sourceTarget;
        bool withoutBitrate, scalingOn;
        int32_t stride;
        bool spaced;
    } cases[] = {
        {"the source's rectangle", PixelFormat::yuy2, 96, 64, 0, rectangle, false, true, 2 * 64, false},
        {"no rectangle: two thirds", PixelFormat::yuy2, 96, 64, 0, none, false, true, (64 * 2 / 3 * 2 + 3) & ~3, false},
        {"a resolution asks for the type's", PixelFormat::yuy2, 96, 64, 1, none, false, true, 2 * 96, false},
        {"much narrower than the rows", PixelFormat::yuy2, 160, 64, 0, none, false, true, 2 * 160, false},
        {"tight rows", PixelFormat::yuy2, 160, 64, 0, none, true, true, 2 * 64, false},
        {"odd rows", PixelFormat::yuy2, 160, 65, 0, none, true, true, 2 * 160, false},
        {"not scaled", PixelFormat::yuy2, 160, 64, 0, none, true, false, 2 * 160, false},
        {"planes as far apart as the output's", PixelFormat::yv12, 96, 64, 0, none, false, true, 96, true},
        {"tight planes", PixelFormat::yv12, 96, 64, 0, none, true, true, 64, false},
        {"odd planes", PixelFormat::yv12, 96, 63, 0, none, false, true, 96, false},
    };
    for (const auto& test : cases) {
        FrameRequest request = Stream(test.format, 96, 48, true);
        request.input.target = rectangle;
        request.input.width = test.typeWidth;
        request.input.xPelsPerMeter = test.resolution;
        request.source.target = test.sourceTarget;
        request.sourceWidth = test.sourceWidth;
        request.sourceIsVih2WithoutBitrate = test.withoutBitrate;
        request.scalingOn = test.scalingOn;
        EXPECT_EQ(LocateInput(request).stride, test.stride) << test.why;
        EXPECT_EQ(LocateInput(request).chromaAtOutputHeight, test.spaced) << test.why;
    }
}

TEST(LayOutFrame, FallsBackToPlainPlanesInAPlainBuffer) {
    FrameRequest request = Stream(PixelFormat::yv12, 64, 32, true);
    request.input.target = {0, 0, 64, 32};
    const size_t spacedBytes = 64 * 48 + 32 * 24 + 32 * 16;
    const Trial spaced(request, spacedBytes);
    ASSERT_EQ(spaced.code, S_OK);
    EXPECT_EQ(spaced.layout.input.second.data, spaced.input + 64 * 48);
    EXPECT_EQ(spaced.layout.input.third.data, spaced.input + 64 * 48 + 32 * 24);

    for (const size_t bytes : {spacedBytes - 1, size_t{64 * 32 * 3 / 2}}) {
        const Trial plain(request, bytes);
        ASSERT_EQ(plain.code, S_OK);
        EXPECT_EQ(plain.layout.input.second.data, plain.input + 64 * 32);
        EXPECT_EQ(plain.layout.input.third.data, plain.input + 64 * 32 + 32 * 16);
    }
    EXPECT_EQ(Trial(request, 64 * 32 * 3 / 2 - 1).code, E_INVALIDARG);

    FrameRequest odd = Stream(PixelFormat::yv12, 64, 34, true);  // 51 rows of output
    odd.input.target = {0, 0, 64, 34};
    const PictureView planes = Trial(odd).layout.input;
    EXPECT_EQ(planes.third.data - planes.second.data, 32 * 26);
}

TEST(LayOutFrame, RefusesWhatIsNotThere) {
    FrameLayout layout;
    uint8_t byte = 0;
    FrameRequest request = Stream(PixelFormat::yv12, 64, 32, true);
    EXPECT_EQ(LayOutFrame(request, {nullptr, plenty}, {&byte, plenty}, layout), E_POINTER);
    EXPECT_EQ(LayOutFrame(request, {&byte, plenty}, {nullptr, plenty}, layout), E_POINTER);
    for (ImageFormat* format : {&request.input, &request.output, &request.source}) {
        format->readable = false;
        EXPECT_EQ(Trial(request).code, E_UNEXPECTED);
        format->readable = true;
    }
    constexpr size_t unknown = std::numeric_limits<size_t>::max();
    const Trial trial(request, unknown, unknown);
    ASSERT_EQ(trial.code, S_OK);
    EXPECT_GT(trial.layout.inputEnd, trial.input) << "an unknown capacity does not wrap the end";
    EXPECT_GT(trial.layout.outputEnd, trial.output);
}

TEST(LayOutFrame, RefusesNonsenseSizesAndStrides) {
    constexpr int32_t most = std::numeric_limits<int32_t>::max(), least = std::numeric_limits<int32_t>::min();
    FrameRequest requests[8];
    for (FrameRequest& request : requests) request = Stream(PixelFormat::yuy2, 64, 32, true);
    requests[0].input.width = -64;
    requests[1].output.width = 0;
    requests[2].sourceWidth = requests[2].input.width = most;
    requests[3].sourceHeight = most;
    requests[4].sourceWidth = requests[4].sourceHeight = 60000;
    requests[5].input.target = {most - 1, 0, most, 1};
    requests[6].format = requests[7].format = PixelFormat::yv12;
    requests[6].output = FormatOf(PixelFormat::yv12, most, least);  // offsets whose sums would leave 64 bits
    requests[6].output.target = {0, most - 1, 1, most};
    requests[7].input = FormatOf(PixelFormat::yv12, 1, 32);  // chroma rows of no bytes
    for (const FrameRequest& request : requests) EXPECT_EQ(Trial(request).code, E_INVALIDARG) << &request - requests;
}

TEST(WidthWithoutPadding, IsTheLargestEvenPartOfThreeHalves) {
    for (const auto& [source, enlarged] : {std::pair{16, 24}, {17, 24}, {18, 26}, {19, 28}, {720, 1080}, {8191, 12286}})
        EXPECT_EQ(std::pair(WidthWithoutPadding(source, true), WidthWithoutPadding(source, false)),
                  std::pair(enlarged, source));
}

}  // namespace
}  // namespace clarivex
