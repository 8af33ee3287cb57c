// Colours of bitmaps as video and back.
#include "host/studio_colour.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

using Samples = std::vector<uint8_t>;

TEST(StudioColour, KnownColoursBothWays) {
    struct Known {
        Samples pixel;  // blue, green, red
        Samples video;
    };
    for (const Known& known : {Known{{0, 0, 0}, {16, 128, 128}}, Known{{255, 255, 255}, {235, 128, 128}},
                               Known{{0, 0, 255}, {81, 90, 240}}, Known{{0, 255, 0}, {145, 54, 34}},
                               Known{{255, 0, 0}, {41, 240, 110}}, Known{{128, 128, 128}, {126, 128, 128}}}) {
        EXPECT_EQ(PlanarOf({{1, 1}, known.pixel}), known.video);
        const Bitmap back = BitmapOf({{1, 1}, known.video});
        for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(back.pixels[i], known.pixel[i], 2);
    }
    EXPECT_EQ(BitmapOf({{1, 1}, Samples{0, 0, 255}}).pixels, (Samples{0, 0, 184})) << "outside the cube";
}

TEST(StudioColour, ChromaIsThatOfTheAverageOfFourPixels) {
    const Samples red = {0, 0, 255};
    const Samples black = {0, 0, 0};
    Bitmap bitmap{{3, 1}, {}};
    for (const Samples& pixel : {red, black, red})
        bitmap.pixels.insert(bitmap.pixels.end(), pixel.begin(), pixel.end());
    EXPECT_EQ(PlanarOf(bitmap), (Samples{81, 16, 81, 109, 90, 184, 240})) << "the last column stands alone";
    const Samples planar = {16, 235, 16, 128, 90, 128, 240};
    const Samples& pixels = BitmapOf({{3, 1}, planar}).pixels;
    EXPECT_EQ(Samples(pixels.begin(), pixels.begin() + 6), (Samples{0, 0, 0, 255, 255, 255}));
    EXPECT_GT(pixels[8], 100) << "the second chroma sample belongs to the third pixel";
}

}  // namespace
}  // namespace clarivex
