// Whole frames through the media object at the ends of what it takes: the largest pictures, and sharpness that is no
// strength.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

#include "shell/caption.h"
#include "tests/support/host_stream.h"
#include "tests/support/synthetic_video.h"

namespace clarivex {
namespace {

constexpr GUID planarSubtypes[] = {mediaSubtypeYv12, mediaSubtypeIyuv};
constexpr uint8_t oldContent = 0xA5;

class WholeFrames : public testing::Test {
protected:
    WholeFrames() {
        ShowCaption(false);
        Renew();
    }
    ~WholeFrames() override { ShowCaption(true); }

    void Renew() {
        object = TestObject{};
        object.settings->put_EnableLighting(0);
        object.settings->put_AllowHD(1);
    }

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

/// How far the frames of two buffers are apart: noise alone makes single samples differ by a few levels.
int32_t LargestDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    int32_t largest = 0;
    for (size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

constexpr int32_t mostNoise = 8;  // of two frames

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
        const std::vector<uint8_t> kept = Play(subtype, width, height, neverEnlarged);
        EXPECT_GT(LargestDifference(kept, input), mostNoise);
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

TEST_F(WholeFrames, SharpnessThatIsNoStrengthCountsAsNoneAndMuchAsTheMost) {
    constexpr float infinite = std::numeric_limits<float>::infinity();
    constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
    for (const unsigned mode : {neverEnlarged, alwaysEnlarged})
        for (const GUID& subtype : {mediaSubtypeYv12, mediaSubtypeIyuv, mediaSubtypeYuy2}) {
            const auto play = [&](float sharpness) {
                Renew();
                object.settings->put_Sharpness(sharpness);
                return Play(subtype, 320, 250, mode);
            };
            const std::vector<uint8_t> none = play(-1), most = play(1e30F), usual = play(2);
            EXPECT_GT(LargestDifference(none, usual), 3 * mostNoise);
            EXPECT_GT(LargestDifference(most, usual), 3 * mostNoise);
            EXPECT_LT(std::ranges::count(none, oldContent), std::ssize(none) / 10) << "still written";
            for (const float sharpness : {-1e-30F, -infinite, notANumber})
                EXPECT_LE(LargestDifference(none, play(sharpness)), mostNoise) << sharpness << ", mode " << mode;
            for (const float sharpness : {9.0F, infinite})
                EXPECT_LE(LargestDifference(most, play(sharpness)), mostNoise) << sharpness << ", mode " << mode;
            if (mode == neverEnlarged && source.packed)
                EXPECT_EQ(std::ranges::count(play(0), oldContent), std::ssize(none)) << "nothing to do";
            else
                EXPECT_LE(LargestDifference(none, play(0)), mostNoise);
        }
}

}  // namespace
}  // namespace clarivex
