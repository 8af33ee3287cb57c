#include "overlay/sleeping/region_add_rect.h"

#include <algorithm>
#include <cstdint>

namespace clarivex {
namespace {

/// A side as Region::OfRectangle takes it; the difference of two corners may be longer than an int32_t.
int32_t Side(int64_t from, int64_t to) {
    return static_cast<int32_t>(std::clamp<int64_t>(to - from, -coordinateLimit, coordinateLimit));
}

}  // namespace

void RegionAddRect(Region& region, const Rectangle& rectangle) {
    const int32_t width = Side(rectangle.left, rectangle.right);
    const int32_t height = Side(rectangle.top, rectangle.bottom);
    region = RegionUnion(region, Region::OfRectangle(rectangle.left, rectangle.top, width, height));
}

}  // namespace clarivex
