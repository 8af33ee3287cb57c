#include "overlay/text_colour.h"

namespace clarivex {

std::array<int16_t, 4> ColourTerms(const TextColour& colour) {
    // The sums hold the offsets of video, and 1/2 for the rounding, in 1/256.
    const auto term = [&](int32_t red, int32_t green, int32_t blue, int32_t sum, int32_t offset) {
        sum += red * colour.red + green * colour.green + blue * colour.blue;
        return static_cast<int16_t>(64 * ((sum >> 8 & 255) - offset));
    };
    return {static_cast<int16_t>(64 * (colour.transparency - 255)), term(66, 129, 25, 4224, 16),
            term(-38, -74, 112, 32896, 128), term(112, -94, -18, 32896, 128)};
}

}  // namespace clarivex
