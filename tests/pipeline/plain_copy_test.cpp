#include "pipeline/plain_copy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/stream_setup.h"

namespace clarivex {
namespace {

constexpr uint8_t untouched = 0xEE;

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
        const CopiedFrame frame(StreamOf(test.format, test.width, test.height, test.outputWidth, test.outputHeight),
                                test.inputBytes, test.outputBytes);
        EXPECT_TRUE(SameSamples(frame.layout.input.luma, frame.layout.output.luma, test.rowBytes));
        EXPECT_EQ(frame.TouchedBytes(), test.touched);
        if (test.format == PixelFormat::yuy2) continue;
        EXPECT_TRUE(SameSamples(frame.layout.input.second, frame.layout.output.second, test.width / 2));
        EXPECT_TRUE(SameSamples(frame.layout.input.third, frame.layout.output.third, test.width / 2));
    }
}

TEST(PlainCopy, StaysInsideBuffersThatEndWithTheLastSample) {
    // Rows with 28 bytes between them go in whole units of 64 bytes, but for the last. Rows that touch go as one run, which
    // would end behind the last sample.
    for (const int32_t width : {50, 60}) {
        FrameRequest packed = StreamOf(PixelFormat::yuy2, 64, 8, 64, 8);
        packed.sourceWidth = width;
        const auto bytes = static_cast<size_t>(7 * 128 + 2 * width);
        const CopiedFrame frame(packed, bytes, bytes);
        EXPECT_TRUE(SameSamples(frame.layout.input.luma, frame.layout.output.luma, 2 * width));
        EXPECT_EQ(frame.TouchedBytes(), static_cast<ptrdiff_t>(bytes));
    }
}

}  // namespace
}  // namespace clarivex
