// The largest pictures through the media object: what is not enhanced stands whole over black, what is is so everywhere.

#include "shell/caption.h"
#include "tests/support/host_stream.h"
#include "tests/support/synthetic_video.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr GUID planarSubtypes[] = {mediaSubtypeYv12, mediaSubtypeIyuv};
constexpr uint8_t oldContent = 0xA5;

class WholeFrames : public testing::Test {
protected:
    WholeFrames() {
        ShowCaption(false);
        object.settings->put_EnableLighting(0);
        object.settings->put_AllowHD(1);
    }
    ~WholeFrames() override { ShowCaption(true); }

    /// One frame of synthetic video: the output buffer, which held old content.
    std::vector<uint8_t> Play(const GUID& subtype, int32_t width, int32_t height, unsigned mode) {
        const auto offered = Negotiate(object, subtype, {width, height}, mode);
        source = HostPicture(subtype, width, height);
        target = HostPicture(subtype, offered.biWidth, offered.biHeight);
        input.resize(source.BytesOf(width, height));
        for (int32_t plane = 0; plane < 3; ++plane)
            for (int32_t y = 0; y < (plane == 0 || source.packed ? height : height / 2); ++y)
                for (int32_t x = 0; x < (plane == 0 ? width : width / 2); ++x)
                    input[source.PlaceOf(plane, x, y)] = SyntheticSample(plane, x, y, 0);
        std::vector<uint8_t> output(target.BytesOf(offered.biWidth, offered.biHeight), oldContent);
        FakeBuffer in(input), out(output);
        EXPECT_EQ(S_OK, PlayFrame(object, in, out));
        return output;
    }

    TestObject object;
    HostPicture source{mediaSubtypeYv12, 0, 0}, target = source;
    std::vector<uint8_t> input;
};

double MeanOf(const std::vector<uint8_t>& bytes, const HostPicture& picture, int32_t plane, int32_t left, int32_t top,
              int32_t side) {
    int32_t sum = 0;
    for (int32_t y = top; y < top + side; ++y)
        for (int32_t x = left; x < left + side; ++x) sum += bytes[picture.PlaceOf(plane, x, y)];
    return static_cast<double>(sum) / (side * side);
}

TEST_F(WholeFrames, FromTheLimitOnStandUnenhancedOverBlack) {
    constexpr int32_t width = 1440, height = 860;
    for (const GUID& subtype : planarSubtypes) {
        EXPECT_EQ(Play(subtype, width, height, neverEnlarged), input);
        const std::vector<uint8_t> output = Play(subtype, width, height, alwaysEnlarged);
        for (int32_t plane = 0; plane < 3; ++plane) {
            const int32_t part = plane == 0 ? 1 : 2;
            for (int32_t y = 0; y < 1290 / part; ++y)
                for (int32_t x = 0; x < 2160 / part; ++x) {
                    const bool isInside = x < width / part && y < height / part;
                    const int32_t black = plane == 0 ? 16 : 128;
                    ASSERT_EQ(isInside ? SyntheticSample(plane, x, y, 0) : black, output[target.PlaceOf(plane, x, y)])
                        << "plane " << plane << ", " << x << ", " << y;
                }
        }
    }
    const std::vector<uint8_t> packed = Play(mediaSubtypeYuy2, width, height, alwaysEnlarged);
    EXPECT_EQ(std::ranges::count(packed, oldContent), std::ssize(packed));
}

// Enlarging, sharpening and noise leave the mean of a block of 16 x 16 samples as it is, to the last one.
TEST_F(WholeFrames, JustBelowTheLimitAreEnhancedEverywhere) {
    constexpr int32_t width = 1649, height = 751;  // 1,238,399 samples
    for (const GUID& subtype : planarSubtypes) {
        EXPECT_NE(Play(subtype, width, height, neverEnlarged), input);
        const std::vector<uint8_t> output = Play(subtype, width, height, alwaysEnlarged);
        for (int32_t plane = 0; plane < 3; ++plane) {
            const int32_t part = plane == 0 ? 1 : 2;
            for (int32_t y = 0; y + 16 <= height / part; y += 16)
                for (int32_t x = 0; x + 16 <= width / part; x += 16)
                    ASSERT_NEAR(MeanOf(input, source, plane, x, y, 16),
                                MeanOf(output, target, plane, x / 2 * 3, y / 2 * 3, 24), 5)
                        << "plane " << plane << ", " << x << ", " << y;
        }
    }
}

}  // namespace
}  // namespace clarivex
