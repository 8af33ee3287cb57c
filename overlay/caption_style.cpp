#include "overlay/caption_style.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

constexpr int32_t opaque = 256;

/// A share of opacity, 0 … 256, of a colour byte.
uint8_t Share(int32_t byte, int32_t opacity) { return static_cast<uint8_t>((byte * opacity + 128) >> 8); }

TextColour Faded(int32_t red, int32_t green, int32_t blue, int32_t opacity) {
    return {Share(red, opacity), Share(green, opacity), Share(blue, opacity),
            static_cast<uint8_t>(255 - (255 * opacity >> 8))};
}

/// To the nearest, ties to even.
int64_t Round(double value) { return std::llrint(value); }

/// What is told in 1/65536 pixel, in 1/256 pixel.
int32_t SubpixelsOf(double value) { return static_cast<int32_t>(Round(value) >> 8); }

double UsableAspect(float pixelAspect) {
    if (!std::isfinite(pixelAspect) || pixelAspect <= 0.0F) return 1.0;
    return std::clamp(pixelAspect, 1.0F / 64.0F, 64.0F);
}

/// Of a letter's em in 1/65536 pixel. Below 3:2 the letters shrink with the picture's shape, to two thirds.
int32_t EmSize(int32_t width, int32_t height, double pixelAspect) {
    const double h = height;
    const double shape = width / h / pixelAspect;
    double cell = h * 0.085;
    if (shape < 1.5) cell *= std::max(shape / 1.5, 0.67);
    return static_cast<int32_t>(Round(static_cast<float>(cell * 1.02 * 0.8 * 65536.0)));
}

}  // namespace

int32_t CaptionOpacity(int32_t frame) {
    const double t = frame / 24.0;
    const double fade = std::clamp(std::max(1.0 - t / 3.0, (t - 6.0) / 5.5), 0.0, 1.0);
    return opaque - static_cast<int32_t>(Round(fade * opaque));
}

CaptionColours ColoursOf(int32_t frame) {
    constexpr int32_t shadowOpacity = opaque - 64;
    const TextColour text = Faded(255, 255, 0x50, CaptionOpacity(frame));
    const int32_t shadow = ((255 - text.transparency) * shadowOpacity) >> 8;
    return {text, Faded(0x10, 0x10, 0x10, shadow)};
}

CaptionPlacement PlaceCaption(int32_t width, int32_t height, float pixelAspect) {
    const double aspect = UsableAspect(pixelAspect);
    const int32_t em = EmSize(width, height, aspect);
    OutlineTransform text;
    text.scaleX = SubpixelsOf(static_cast<double>(Round(0.95 * aspect * em)) * 0.8736);
    text.scaleY = SubpixelsOf(0.96 * em);
    text.translateX = SubpixelsOf(0.1 * em * aspect);
    text.translateY = (height << 8) - SubpixelsOf(0.3 * em);

    OutlineTransform shadow = text;
    const double emPixels = em * 1.52587890625e-05;
    shadow.translateX += static_cast<int32_t>(Round(aspect * emPixels * 15));
    shadow.translateY += static_cast<int32_t>(Round(emPixels * 15));
    return {text, shadow};
}

}  // namespace clarivex
