#include "overlay/sleeping/arc_outline.h"

#include <cmath>
#include <numbers>

#include "overlay/font_engine.h"

namespace clarivex {
namespace {

constexpr double arcStep = 0.1;  // radians

OutlinePoint OnCircle(double angle, int32_t radius) {
    constexpr int32_t pixelUnits = emUnits / Font::cellHeight;
    const double units = static_cast<double>(radius) * pixelUnits;
    return {ToCoordinate(std::llrint(std::sin(angle) * units)), ToCoordinate(std::llrint(-std::cos(angle) * units))};
}

}  // namespace

void AppendArc(PointList& outline, int32_t radius, int32_t turn) {
    const double angle = turn / 65536.0 * 2 * std::numbers::pi;
    const auto lastStep = static_cast<int32_t>(std::floor(angle / arcStep));
    outline.Append({0, 0});
    for (int32_t i = 0; i <= lastStep; ++i) outline.Append(OnCircle(arcStep * i, radius));
    outline.Append(OnCircle(angle, radius));
    outline.Append(ContourBreak);
}

}  // namespace clarivex
