// Outlines as closed contours of straight lines, in units that do not depend on the picture.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>

#include "overlay/growing_array.h"

namespace clarivex {

/// A point in outline units, 65536 to the em, y downward; or ContourBreak.
struct OutlinePoint {
    int32_t x = 0;
    int32_t y = 0;

    bool operator==(const OutlinePoint&) const = default;
};

/// Ends every contour, the last one too, and stands for no position.
constexpr int32_t contourBreakValue = INT32_MIN;
constexpr OutlinePoint ContourBreak{contourBreakValue, contourBreakValue};

/// Whether the point stands for a position: neither coordinate has the break's value.
constexpr bool IsPosition(const OutlinePoint& point) {
    return point.x != contourBreakValue && point.y != contourBreakValue;
}

/// Outline units of an em; lines of text lie this far apart.
constexpr int32_t emUnits = 65536;

/// The nearest number that a position's coordinate may be: an int32_t, but not the break's value.
constexpr int32_t ToCoordinate(int64_t value) {
    return static_cast<int32_t>(std::clamp<int64_t>(value, contourBreakValue + 1, INT32_MAX));
}

using PointList = GrowingArray<OutlinePoint>;

/// Shared ownership of an outline. A list that somebody else holds too is never written: writers begin a new one.
using OutlineHandle = std::shared_ptr<PointList>;

}  // namespace clarivex
