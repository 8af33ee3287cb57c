// Turns gain curves into the integers that the pixel loops multiply with.
#include "algorithms/sharpen_params.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "algorithms/rounding.h"

namespace clarivex {
namespace {

constexpr int32_t maxNarrowKnee = 16383;

// Multipliers of the two measures at a gain of 1, before the scales.
constexpr double narrowUnit = 5.333333333333333;
constexpr double wideUnit = 42.666666666666664;

struct GainCurve {
    double base = 0.0;
    double aboveKnee = 0.0;
};

double LinearGain(double gainLog2) { return std::exp2(gainLog2) - 1.0; }

GainCurve CurveOf(const SharpenParams& params) {
    const double base = params.baseGainLog2;
    return {LinearGain(base), LinearGain(base + params.extraGainLog2)};
}

// Two kernels that both smooth would take away the same detail twice.
void ReduceAgainstEachOther(double& narrow, double& wide) {
    if (narrow >= 0.0 || wide >= 0.0) return;
    const double both = wide * narrow;
    wide *= 1.0 - 0.5 * both;
    narrow *= 1.0 - 0.25 * both;
}

int32_t ScaledKnee(float knee, int32_t extraGain) {
    return std::abs(RoundToNearest(static_cast<double>(knee) * extraGain));
}

}  // namespace

bool IsSharpenActive(const SharpenParams& params) {
    const double base = params.baseGainLog2;
    const double extra = params.extraGainLog2;
    if (base == 0.0 && extra == 0.0) return false;
    return params.knee != 0.0F || base + extra != 0.0;
}

SharpenCoefficients DeriveNarrowCoefficients(const SharpenParams& params) {
    constexpr double unit = 5.0;
    const GainCurve curve = CurveOf(params);
    const double base = unit * curve.base;
    const double extra = unit * curve.aboveKnee - base;

    SharpenCoefficients coefficients;
    coefficients.narrowBase = RoundToNearest(static_cast<float>(base));
    coefficients.narrowExtra = RoundToNearest(static_cast<float>(extra));
    coefficients.narrowKnee = std::min(ScaledKnee(params.knee, coefficients.narrowExtra), maxNarrowKnee);
    return coefficients;
}

SharpenCoefficients DeriveSharpenCoefficients(const SharpenParams& narrow, const SharpenParams& wide, float narrowScale,
                                              float wideScale) {
    GainCurve narrowCurve = CurveOf(narrow);
    GainCurve wideCurve = CurveOf(wide);
    ReduceAgainstEachOther(narrowCurve.base, wideCurve.base);
    ReduceAgainstEachOther(narrowCurve.aboveKnee, wideCurve.aboveKnee);
    const double narrowFactor = std::floor(narrowUnit * narrowScale);
    const double wideFactor = std::floor(wideUnit * wideScale);

    SharpenCoefficients coefficients;
    coefficients.narrowBase = RoundToNearest(narrowFactor * narrowCurve.base);
    coefficients.narrowExtra = RoundToNearest(narrowFactor * (narrowCurve.aboveKnee - narrowCurve.base));
    coefficients.narrowKnee = ScaledKnee(narrow.knee, coefficients.narrowExtra);
    coefficients.wideBase = RoundToNearest(wideFactor * wideCurve.base);
    coefficients.wideExtra = RoundToNearest(wideFactor * (wideCurve.aboveKnee - wideCurve.base));
    coefficients.wideKnee = ScaledKnee(wide.knee, coefficients.wideExtra);
    return coefficients;
}

}  // namespace clarivex
