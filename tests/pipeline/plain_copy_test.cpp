#include "pipeline/plain_copy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace clarivex {
namespace {

constexpr uint8_t untouched = 0xEE;

FrameRequest Stream(PixelFormat format, int32_t width, int32_t height, int32_t outputWidth, int32_t outputHeight) {
    const auto formatOf = [format](int32_t w, int32_t h) -> ImageFormat {
        const int32_t bits = format == PixelFormat::yuy2 ? 16 : 12;
        return {.readable = true, .width = w, .height = h, .bitCount = bits, .target = {}};
    };
    FrameRequest request;
    request.format = format;
    request.input = formatOf(width, height);
    request.source = request.input;
    request.output = formatOf(outputWidth, outputHeight);
    request.sourceWidth = width;
    request.sourceHeight = height;
    request.scalingOn = outputWidth > width;
    return request;
}

// A copied frame; the buffers are exactly as long as told.
struct CopiedFrame {
    std::vector<uint8_t> input;
    std::vector<uint8_t> output;
    FrameLayout layout;

    CopiedFrame(const FrameRequest& request, size_t inputBytes, size_t outputBytes)
        : input(inputBytes), output(outputBytes, untouched) {
        for (size_t i = 0; i < inputBytes; ++i) input[i] = static_cast<uint8_t>(i % 211);
        EXPECT_EQ(LayOutFrame(request, {output.data(), outputBytes}, {input.data(), inputBytes}, layout), S_OK);
        PlainCopy(request.format, layout);
    }

    ptrdiff_t TouchedBytes() const {
        return static_cast<ptrdiff_t>(output.size()) - std::count(output.begin(), output.end(), untouched);
    }
};

bool SameSamples(const Plane& a, const Plane& b, int32_t rowBytes) {
    for (int32_t y = 0; y < std::min(a.height, b.height); ++y)
        if (!std::equal(a.Row(y), a.Row(y) + rowBytes, b.Row(y))) return false;
    return true;
}

struct CopyCase {
    PixelFormat format;
    int32_t width, height, outputWidth, outputHeight;
    size_t inputBytes, outputBytes;
    int32_t rowBytes, touched;
};

// A larger output, an odd packed width, whose pair's second sample stays, and odd sizes.
TEST(PlainCopy, PutsWholePairsOfRowsAtTheUpperLeftAndTouchesNothingElse) {
    const CopyCase cases[] = {{PixelFormat::yv12, 36, 20, 56, 30, 1080, 2520, 36, 1080},
                              {PixelFormat::yuy2, 33, 8, 56, 12, 68 * 8, 112 * 12, 66, 66 * 8},
                              {PixelFormat::yuy2, 40, 11, 40, 11, 80 * 11, 80 * 11, 80, 800},
                              {PixelFormat::iyuv, 37, 9, 37, 9, 37 * 9 * 2, 37 * 9 * 2, 37, 37 * 8 + 8 * 18}};
    for (const CopyCase& test : cases) {
        SCOPED_TRACE(test.width);
        const CopiedFrame frame(Stream(test.format, test.width, test.height, test.outputWidth, test.outputHeight),
                                test.inputBytes, test.outputBytes);
        EXPECT_TRUE(SameSamples(frame.layout.input.luma, frame.layout.output.luma, test.rowBytes));
        EXPECT_EQ(frame.TouchedBytes(), test.touched);
        if (test.format == PixelFormat::yuy2) continue;
        EXPECT_TRUE(SameSamples(frame.layout.input.second, frame.layout.output.second, test.width / 2));
        EXPECT_TRUE(SameSamples(frame.layout.input.third, frame.layout.output.third, test.width / 2));
    }
}

TEST(PlainCopy, StaysInsideBuffersThatEndWithTheLastSample) {
    // Rows with 28 bytes between them: all but the last are copied in whole units of 64 bytes.
    FrameRequest packed = Stream(PixelFormat::yuy2, 64, 8, 64, 8);
    packed.sourceWidth = 50;
    const size_t bytes = 7 * 128 + 100;
    const CopiedFrame frame(packed, bytes, bytes);
    EXPECT_TRUE(SameSamples(frame.layout.input.luma, frame.layout.output.luma, 100));
    EXPECT_EQ(frame.TouchedBytes(), static_cast<ptrdiff_t>(bytes));

    // Rows that touch go as one run, which would end behind the last sample.
    packed.sourceWidth = 60;
    const size_t runBytes = 7 * 128 + 120;
    const CopiedFrame run(packed, runBytes, runBytes);
    EXPECT_EQ(run.TouchedBytes(), static_cast<ptrdiff_t>(runBytes));
}

}  // namespace
}  // namespace clarivex
