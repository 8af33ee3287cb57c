#include "overlay/outline_shape.h"

#include <algorithm>

namespace clarivex {
namespace {

/// From the smallest to the largest coordinates of positions.
Rectangle BoundsOf(const PointList& points) {
    Rectangle bounds{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    for (const OutlinePoint& point : points) {
        if (!IsPosition(point)) continue;
        bounds.left = std::min(bounds.left, point.x);
        bounds.top = std::min(bounds.top, point.y);
        bounds.right = std::max(bounds.right, point.x);
        bounds.bottom = std::max(bounds.bottom, point.y);
    }
    return bounds.left <= bounds.right ? bounds : Rectangle{};
}

/// To 1/256 pixel.
int32_t Scaled(int32_t coordinate, int32_t scale, int32_t translation) {
    constexpr int64_t limit = int64_t{1} << 30;
    return static_cast<int32_t>(std::clamp((int64_t{coordinate} * scale >> 16) + translation, -limit, limit));
}

}  // namespace

void OutlineShape::SetOutline(const OutlineHandle& newOutline) {
    if (newOutline == outline) return;
    outline = newOutline;
    bounds = outline ? BoundsOf(*outline) : Rectangle{};
    dirty = true;
}

void OutlineShape::SetTransform(const OutlineTransform& newTransform) {
    if (newTransform == transform) return;
    transform = newTransform;
    dirty = true;
}

Rectangle OutlineShape::ScaledBounds(const OutlineTransform& by) const {
    return {Scaled(bounds.left, by.scaleX, by.translateX), Scaled(bounds.top, by.scaleY, by.translateY),
            Scaled(bounds.right, by.scaleX, by.translateX), Scaled(bounds.bottom, by.scaleY, by.translateY)};
}

void OutlineShape::SetSize(int32_t newWidth, int32_t newHeight, float /*aspect*/) {
    if (newWidth == width && newHeight == height) return;
    width = newWidth;
    height = newHeight;
    dirty = true;
}

bool OutlineShape::Update(const ComposeFrame& /*frame*/) {
    changed.Clear();
    if (!dirty) return false;
    dirty = false;
    const Rectangle box = ScaledBounds(transform);
    const int32_t left = std::max((box.left >> 8) + transform.offsetX, 0);
    const int32_t top = std::max((box.top >> 8) + transform.offsetY, 0);
    const int32_t right = std::min(((box.right + 255) >> 8) + transform.offsetX, width);
    const int32_t bottom = std::min(((box.bottom + 255) >> 8) + transform.offsetY, height);
    content = left < right && top < bottom ? Region::OfRectangle(left, top, right - left, bottom - top) : Region();
    changed = content;
    return true;
}

void OutlineShape::Paint(MaskBitmap& mask, const Region& region, const ComposeFrame& /*frame*/) {
    if (outline) PaintOutline(transform, outline->Elements(), mask, region);
}

}  // namespace clarivex
