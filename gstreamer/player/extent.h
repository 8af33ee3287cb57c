// Sizes of pictures and windows, in square pixels.
#pragma once

#include <algorithm>
#include <cstdint>

namespace clarivex {

struct Extent {
    int width = 0;
    int height = 0;

    bool operator==(const Extent&) const = default;
};

/// The largest extent of the picture's shape inside the box. All sides are at least 1, and so are the result's.
inline Extent FitInto(const Extent& picture, const Extent& box) {
    const int64_t across = int64_t{picture.width} * box.height;
    const int64_t down = int64_t{picture.height} * box.width;
    if (across > down) return {box.width, std::max(1, static_cast<int>(down / picture.width))};
    return {std::max(1, static_cast<int>(across / picture.height)), box.height};
}

/// Where a column of the window stands in a picture that fills as much of it as it can, in its middle: 0 … 1 of its width.
inline double PlaceInPicture(int column, const Extent& picture, const Extent& window) {
    const Extent shown = FitInto(picture, window);
    const double left = (window.width - shown.width) / 2.0;
    return std::clamp((column - left) / shown.width, 0.0, 1.0);
}

}  // namespace clarivex
