#include "engine/post_filter.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <numeric>

namespace clarivex {
namespace {

constexpr size_t centre = 8;
using Response = std::array<double, 16>;

constexpr int32_t oddGain = 0x1FE0;
constexpr int32_t evenGain = 0x2000;

FilterShape ShapeOf(const DetailSettings& settings, TuningSet tuningSet, AxisScale horizontal) {
    const size_t set = horizontal == AxisScale::twofold && tuningSet != TuningSet::first ? 1 : 0;
    return settings.filterShapes[static_cast<size_t>(horizontal) + set];
}

const SharpnessRows& RowsOf(TuningSet tuningSet, AxisScale horizontal) {
    switch (horizontal) {
        case AxisScale::none: return tapRows1;
        case AxisScale::threeHalves: return tapRows15;
        default: return tuningSet == TuningSet::first ? tapRows2 : tapRows2b;
    }
}

double Sinc(double x) { return std::abs(x) <= 1e-9 ? 1.0 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x); }

double SincWindow(double y) {
    if (y < 1e-8) return 1.0;
    return y > 1.0 ? 0.0 : Sinc(y);
}

Response BaseResponse(FilterShape shape) {
    Response base{};
    if (shape == FilterShape::odd) {
        base[centre] = 1.0;
        return base;
    }
    if (shape == FilterShape::evenPair) {
        base[centre - 1] = base[centre] = 0.5;
        return base;
    }
    for (size_t k = 4; k <= 11; ++k) {
        const double x = static_cast<double>(k) - 8.0 + 0.5;
        base[k] = Sinc(x) * SincWindow(std::abs(x) / 4.5);
    }
    return base;
}

/// What the strength adds to the base, the same on both sides.
Response StrengthResponse(FilterShape shape, const SharpnessRows& rows, const Strength& strength) {
    Response sides{};
    const size_t entries = shape == FilterShape::odd ? 4 : 8;
    for (size_t i = 0; i < entries; ++i) {
        const double entry = MixRows(rows, strength, i) / 100.0;
        sides[centre + i] += entry;
        if (shape != FilterShape::odd)
            sides[centre - 1 - i] += entry;
        else if (i != 0)
            sides[centre - i] += entry;
    }
    return sides;
}

/// Gives the middle what rounding left over, so that flat areas stay flat.
void RepairSum(DetailTaps& taps, FilterShape shape, int32_t gain) {
    const int32_t rest = gain - std::accumulate(taps.begin(), taps.end(), 0);
    const auto add = [&](size_t k, int32_t amount) { taps[k] = static_cast<int16_t>(taps[k] + amount); };
    if (shape == FilterShape::odd) {
        add(centre, rest);
    } else {
        add(centre - 1, rest >> 1);
        add(centre, (rest + 1) >> 1);
    }
}

DetailTaps Quantise(const Response& response, FilterShape shape) {
    const int32_t gain = shape == FilterShape::odd ? oddGain : evenGain;
    const double sum = std::accumulate(response.begin(), response.end(), 0.0);
    DetailTaps taps{};
    for (size_t k = 0; k < taps.size(); ++k)
        taps[k] = static_cast<int16_t>(std::nearbyint(static_cast<float>(gain * (response[k] / sum))));
    if (shape == FilterShape::odd)
        taps[0] = 0;
    else
        for (size_t k = 0; k < centre; ++k) taps[k] = taps[15 - k];
    RepairSum(taps, shape, gain);
    return taps;
}

}  // namespace

PostFilter DesignPostFilter(const DetailSettings& settings, TuningSet tuningSet, AxisScale horizontal,
                            const Strength& strength) {
    if (settings.sharpenScheme != SharpenScheme::levelTables) {
        PostFilter off;
        off.taps[centre] = oddGain;
        return off;
    }
    const FilterShape shape = ShapeOf(settings, tuningSet, horizontal);
    Response response = BaseResponse(shape);
    const Response sides = StrengthResponse(shape, RowsOf(tuningSet, horizontal), strength);
    for (size_t k = 0; k < response.size(); ++k) response[k] += sides[k];
    return {true, shape != FilterShape::odd, Quantise(response, shape)};
}

}  // namespace clarivex
