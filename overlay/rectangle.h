// A rectangle of pixels, or of any other unit.
#pragma once

#include <cstdint>

namespace clarivex {

/// From (left, top) up to but not including (right, bottom).
struct Rectangle {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    int32_t Width() const { return right - left; }
    int32_t Height() const { return bottom - top; }
    bool operator==(const Rectangle&) const = default;
};

}  // namespace clarivex
