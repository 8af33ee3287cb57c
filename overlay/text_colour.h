// The colour of a text, and the form in which it is painted.
#pragma once

#include <array>
#include <cstdint>

namespace clarivex {

/// Red, green and blue are premultiplied by the opacity; transparency is 0 when opaque, 255 when gone.
struct TextColour {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t transparency = 255;

    /// Whether painting would leave no trace.
    bool IsGone() const { return red == 0 && green == 0 && blue == 0 && transparency == 255; }

    bool operator==(const TextColour&) const = default;
};

/// What full coverage adds to the bytes T, Y, U and V of a pixel, without the offsets of video, times 64:
/// -16320 … 16320.
std::array<int16_t, 4> ColourTerms(const TextColour& colour);

}  // namespace clarivex
