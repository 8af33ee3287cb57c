#include "pipeline/complete_planes.h"

#include <gtest/gtest.h>

#include "tests/support/test_images.h"

namespace clarivex {
namespace {

/// What a plane is expected to show: the stage's own samples, the last one of them again, the source's, or black.
char KindOf(const Plane& picture, const Plane& before, const Plane& source, uint8_t black, int32_t x, int32_t y) {
    const uint8_t sample = picture.Row(y)[x];
    if (sample == before.Row(y)[x]) return 'w';
    if (x < source.width && y < source.height && sample == source.Row(y)[x]) return 's';
    if (sample == black) return 'b';
    return x > 0 && sample == picture.Row(y)[x - 1] ? 'r' : '?';
}

/// Samples of one value each, so that their origin shows: 200 written, 100 the source's.
class CompletedPicture {
public:
    CompletedPicture(std::pair<int32_t, int32_t> size, std::pair<int32_t, int32_t> sourceSize,
                     const WrittenPart& written) {
        Fill(picture, size.first, size.second, 200);
        Fill(before, size.first, size.second, 200);
        Fill(source, sourceSize.first, sourceSize.second, 100);
        // A written picture tells its columns apart.
        for (const Plane& plane :
             {picture.Planes().luma, before.Planes().luma, picture.Planes().third, before.Planes().third})
            for (int32_t y = 0; y < plane.height; ++y)
                for (int32_t x = 0; x < plane.stride; ++x) plane.Row(y)[x] = static_cast<uint8_t>(200 + x % 50);
        CompletePlanes(picture.Planes(), source.Planes(), written);
    }

    char Luma(int32_t x, int32_t y) const {
        return KindOf(picture.Planes().luma, before.Planes().luma, source.Planes().luma, 16, x, y);
    }
    char Chroma(int32_t x, int32_t y) const {
        return KindOf(picture.Planes().third, before.Planes().third, source.Planes().third, 128, x, y);
    }

private:
    static void Fill(WorkingImage& image, int32_t width, int32_t height, int32_t value) {
        image.Resize(width, height);
        std::memset(image.Planes().luma.data, value, static_cast<size_t>(EndOf(image) - image.Planes().luma.data));
    }

    WorkingImage picture, before, source;
};

TEST(CompletePlanes, RepeatTheLastColumnOfAnEnlargedPicture) {
    const CompletedPicture picture({56, 12}, {35, 8}, {52, 12, true});
    EXPECT_EQ(picture.Luma(51, 11), 'w');
    EXPECT_EQ(picture.Luma(52, 0), 'r');
    EXPECT_EQ(picture.Luma(55, 11), 'r');
    EXPECT_EQ(picture.Chroma(26, 5), 'w') << "three for each of nine pairs";
    EXPECT_EQ(picture.Chroma(27, 5), 'r');
    EXPECT_EQ(picture.Chroma(27, 0), 'r');
}

TEST(CompletePlanes, BlackenWhatIsBelowAPictureScaledAlongItsRowsOnly) {
    const CompletedPicture picture({56, 15}, {37, 10}, {55, 10, true});
    EXPECT_EQ(picture.Luma(54, 9), 'w');
    EXPECT_EQ(picture.Luma(55, 9), 'r');
    EXPECT_EQ(picture.Luma(0, 10), 'b');
    EXPECT_EQ(picture.Luma(55, 14), 'b');
    EXPECT_EQ(picture.Chroma(27, 4), 'w');
    EXPECT_EQ(picture.Chroma(0, 5), 'b');
}

TEST(CompletePlanes, BlackenAroundAPictureThatKeptItsSize) {
    const CompletedPicture picture({48, 12}, {32, 8}, {32, 8, true});
    EXPECT_EQ(picture.Luma(31, 7), 'w');
    EXPECT_EQ(picture.Luma(32, 7), 'b');
    EXPECT_EQ(picture.Luma(0, 8), 'b');
    EXPECT_EQ(picture.Chroma(15, 3), 'w');
    EXPECT_EQ(picture.Chroma(16, 3), 'b');
    EXPECT_EQ(picture.Chroma(0, 4), 'b');
}

TEST(CompletePlanes, ShowTheSourceWhereNothingWasWritten) {
    const CompletedPicture picture({48, 12}, {32, 8}, {0, 0, true});
    EXPECT_EQ(picture.Luma(0, 0), 's');
    EXPECT_EQ(picture.Luma(31, 7), 's');
    EXPECT_EQ(picture.Luma(32, 0), 'b');
    EXPECT_EQ(picture.Luma(0, 8), 'b');
    EXPECT_EQ(picture.Chroma(15, 3), 's');
    EXPECT_EQ(picture.Chroma(16, 0), 'b');
    const CompletedPicture cropped({33, 10}, {33, 11}, {0, 0, false});
    EXPECT_EQ(cropped.Luma(32, 9), 's');
    EXPECT_EQ(cropped.Chroma(0, 0), 'w') << "the caller shows the source's chroma";
}

}  // namespace
}  // namespace clarivex
