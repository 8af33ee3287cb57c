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

/// The em is worked out in 1/65536 pixel, places in 1/256 pixel.
constexpr double emFraction = 65536.0;

/// Of 1/65536 pixel in 1/256 pixel.
int32_t SubpixelsOf(double value) { return static_cast<int32_t>(Round(value) >> 8); }

double UsableAspect(float pixelAspect) {
    if (!std::isfinite(pixelAspect) || pixelAspect <= 0.0F) return 1.0;
    return std::clamp(pixelAspect, 1.0F / 64.0F, 64.0F);
}

/// Of a letter's em in 1/65536 pixel. Below 3:2 the letters shrink with the picture's shape, to two thirds.
int32_t EmSize(int32_t width, int32_t height, double pixelAspect) {
    constexpr double cellShare = 0.085;  // a line of text takes this much of the height
    constexpr double fullShape = 1.5, leastShrink = 0.67;
    constexpr double spacing = 1.02, emShare = 0.8;  // of a cell; two factors, each of which rounds
    const double h = height;
    const double shape = width / h / pixelAspect;
    double cell = h * cellShare;
    if (shape < fullShape) cell *= std::max(shape / fullShape, leastShrink);
    return static_cast<int32_t>(Round(static_cast<float>(cell * spacing * emShare * emFraction)));
}

}  // namespace

int32_t CaptionOpacity(int32_t frame) {
    constexpr double framesPerSecond = 24.0;  // a nominal rate: the caption counts frames, whatever the video's rate is
    constexpr double fadeIn = 3.0, fadeOutAt = 6.0, fadeOut = 5.5;  // seconds
    const double t = frame / framesPerSecond;
    const double fade = std::clamp(std::max(1.0 - t / fadeIn, (t - fadeOutAt) / fadeOut), 0.0, 1.0);
    return opaque - static_cast<int32_t>(Round(fade * opaque));
}

CaptionColours ColoursOf(int32_t frame) {
    constexpr int32_t shadowOpacity = opaque - 64;
    const TextColour text = Faded(255, 255, 0x50, CaptionOpacity(frame));
    const int32_t shadow = ((255 - text.transparency) * shadowOpacity) >> 8;
    return {text, Faded(0x10, 0x10, 0x10, shadow)};
}

CaptionPlacement PlaceCaption(int32_t width, int32_t height, float pixelAspect) {
    constexpr double letterWidth = 0.95, narrowing = 0.8736, letterHeight = 0.96;  // of the em
    constexpr double leftMargin = 0.1, bottomMargin = 0.3;                         // of the em
    constexpr int32_t shadowStep = 15;                                             // 1/256 em
    const double aspect = UsableAspect(pixelAspect);
    const int32_t em = EmSize(width, height, aspect);
    OutlineTransform text;
    text.scaleX = SubpixelsOf(static_cast<double>(Round(letterWidth * aspect * em)) * narrowing);
    text.scaleY = SubpixelsOf(letterHeight * em);
    text.translateX = SubpixelsOf(leftMargin * em * aspect);
    text.translateY = (height << 8) - SubpixelsOf(bottomMargin * em);

    OutlineTransform shadow = text;
    const double emPixels = em / emFraction;
    shadow.translateX += static_cast<int32_t>(Round(aspect * emPixels * shadowStep));
    shadow.translateY += static_cast<int32_t>(Round(emPixels * shadowStep));
    return {text, shadow};
}

}  // namespace clarivex
