// Whole-number arithmetic in 65536ths, so that every build gives the same bytes.
#include "host/studio_colour.h"

#include <algorithm>
#include <array>

namespace clarivex {

namespace {

constexpr int32_t shift = 16;
constexpr int32_t half = 1 << (shift - 1);
constexpr int32_t black = 16;
constexpr int32_t neutral = 128;

struct Colour {
    int32_t blue = 0;
    int32_t green = 0;
    int32_t red = 0;
};

/// Shares of red, green and blue; those of a colour difference sum to 0, so that greys have none.
uint8_t Mix(const Colour& colour, const std::array<int32_t, 3>& shares, int32_t zero) {
    const int32_t sum = shares[0] * colour.red + shares[1] * colour.green + shares[2] * colour.blue;
    return static_cast<uint8_t>(((sum + half) >> shift) + zero);
}

uint8_t LumaOf(const Colour& colour) { return Mix(colour, {16829, 33039, 6416}, black); }
uint8_t BlueDifferenceOf(const Colour& colour) { return Mix(colour, {-9714, -19070, 28784}, neutral); }
uint8_t RedDifferenceOf(const Colour& colour) { return Mix(colour, {28784, -24103, -4681}, neutral); }

uint8_t Limited(int32_t value) { return static_cast<uint8_t>(std::clamp((value + half) >> shift, 0, 255)); }

size_t PixelPlace(const PictureSize& size, int32_t x, int32_t y) {
    return (static_cast<size_t>(y) * static_cast<size_t>(size.width) + static_cast<size_t>(x)) * Bitmap::bytesAPixel;
}

Colour ColourAt(const Bitmap& bitmap, int32_t x, int32_t y) {
    const uint8_t* pixel = &bitmap.pixels[PixelPlace(bitmap.size, x, y)];
    return {pixel[0], pixel[1], pixel[2]};
}

/// Average of the pixels that chroma sample x, y stands for; at an odd picture's end the last ones count twice.
Colour AverageAt(const Bitmap& bitmap, int32_t x, int32_t y) {
    Colour sum{2, 2, 2};  // rounds to nearest
    for (int32_t row = 2 * y; row < 2 * y + 2; ++row)
        for (int32_t column = 2 * x; column < 2 * x + 2; ++column) {
            const Colour colour =
                ColourAt(bitmap, std::min(column, bitmap.size.width - 1), std::min(row, bitmap.size.height - 1));
            sum = {sum.blue + colour.blue, sum.green + colour.green, sum.red + colour.red};
        }
    return {sum.blue / 4, sum.green / 4, sum.red / 4};
}

void PutColour(uint8_t luma, uint8_t blueDifference, uint8_t redDifference, uint8_t* pixel) {
    const int32_t brightness = 76309 * (luma - black);
    const int32_t u = blueDifference - neutral;
    const int32_t v = redDifference - neutral;
    pixel[0] = Limited(brightness + 132201 * u);
    pixel[1] = Limited(brightness - 25675 * u - 53279 * v);
    pixel[2] = Limited(brightness + 104597 * v);
}

}  // namespace

std::vector<uint8_t> PlanarOf(const Bitmap& bitmap) {
    const PictureSize& size = bitmap.size;
    std::vector<uint8_t> samples;
    samples.reserve(size.PlanarBytes());
    for (int32_t y = 0; y < size.height; ++y)
        for (int32_t x = 0; x < size.width; ++x) samples.push_back(LumaOf(ColourAt(bitmap, x, y)));
    for (const auto differenceOf : {BlueDifferenceOf, RedDifferenceOf})
        for (int32_t y = 0; y < size.ChromaHeight(); ++y)
            for (int32_t x = 0; x < size.ChromaWidth(); ++x) samples.push_back(differenceOf(AverageAt(bitmap, x, y)));
    return samples;
}

Bitmap BitmapOf(const PlanarPicture& picture) {
    const PictureSize& size = picture.size;
    const auto [luma, blue, red] = picture.Planes();
    Bitmap bitmap{size, std::vector<uint8_t>(size.LumaBytes() * Bitmap::bytesAPixel)};
    for (int32_t y = 0; y < size.height; ++y)
        for (int32_t x = 0; x < size.width; ++x) {
            const auto sample = static_cast<size_t>(y) * static_cast<size_t>(size.width) + static_cast<size_t>(x);
            const auto chroma =
                static_cast<size_t>(y / 2) * static_cast<size_t>(size.ChromaWidth()) + static_cast<size_t>(x / 2);
            PutColour(luma[sample], blue[chroma], red[chroma], &bitmap.pixels[PixelPlace(size, x, y)]);
        }
    return bitmap;
}

}  // namespace clarivex
