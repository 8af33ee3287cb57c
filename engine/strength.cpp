#include "engine/strength.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

bool Is(const ScaleModes& modes, int32_t horizontal, int32_t vertical) {
    return modes.horizontal == horizontal && modes.vertical == vertical;
}

/// Rows that keep their size go with any vertical mode; of the others only these pairs exist.
bool IsKnown(const ScaleModes& modes) {
    const bool keepsRows = modes.horizontal == 0 && modes.vertical >= 0 && modes.vertical <= 2;
    return keepsRows || Is(modes, 1, 0) || Is(modes, 1, 1) || Is(modes, 2, 1) || Is(modes, 2, 2);
}

WindowKind WindowOf(int32_t windowKind) {
    if (windowKind == 0) return WindowKind::kaiser;
    return windowKind == 1 ? WindowKind::sinc : WindowKind::none;
}

PrototypeDesign DesignOf(const EngineSettings& settings, int32_t cutoffHundredths) {
    PrototypeDesign design;
    design.beta = settings.kernelBeta / 10.0;
    design.cutoff = std::max(static_cast<double>(cutoffHundredths), 0.5) / 100.0;
    design.window = WindowOf(settings.windowKind);
    return design;
}

CombSettings HorizontalComb(const EngineSettings& settings, int32_t horizontalMode) {
    return horizontalMode == 2 ? twofoldCombs[settings.tuningSet == 0 ? 0 : 1] : horizontalComb;
}

PrototypeDesign HorizontalDesign(const EngineSettings& settings, int32_t horizontalMode) {
    PrototypeDesign design = DesignOf(settings, settings.kernelCutoff);
    const CombSettings comb = HorizontalComb(settings, horizontalMode);
    design.combWeightA = comb.weightA * combWeightUnit;
    design.combWeightB = comb.weightB * combWeightUnit;
    design.combOffsetA = comb.offsetA;
    design.combOffsetB = comb.offsetB;
    return design;
}

/// The vertical response carries the sharpness.
PrototypeDesign VerticalDesign(const EngineSettings& settings, const Strength& strength) {
    PrototypeDesign design = DesignOf(settings, settings.kernelCutoff + 6);
    double weightA = verticalComb.weightA;
    double weightB = verticalComb.weightB;
    design.combOffsetA = verticalComb.offsetA;
    design.combOffsetB = verticalComb.offsetB;
    if (settings.sharpenScheme >= 2) {
        const auto shape = [&](size_t column, int32_t base) {
            const auto& row = verticalShapeRows[static_cast<size_t>(strength.level)];
            const auto& next = verticalShapeRows[static_cast<size_t>(strength.level) + 1];
            return (row[column] + base) + (next[column] - row[column]) * strength.fraction;
        };
        weightA = shape(0, verticalComb.weightA);
        weightB = shape(1, verticalComb.weightB);
        design.combOffsetA = 64.0;
        design.combOffsetB = 128.0;
    }
    design.combWeightA = weightA * combWeightUnit;
    design.combWeightB = weightB * combWeightUnit;
    return design;
}

}  // namespace

ScaleModes LimitModes(ScaleModes wanted, int32_t width, int32_t height) {
    ScaleModes modes = IsKnown(wanted) ? wanted : ScaleModes{};
    if (Is(modes, 2, 2) && (width >= 1024 || height >= 768)) modes = {0, 0};
    if (Is(modes, 2, 1) && (width >= 1361.92 || height >= 1021.44)) modes = {1, 1};
    if (Is(modes, 1, 1) && (width >= 2048 || height >= 1021.44)) modes = {1, 0};
    if (Is(modes, 1, 0) && (width >= 2048 || height >= 1536)) modes = {0, 0};
    return modes;
}

Strength StrengthOf(float sharpness, int32_t width, int32_t height) {
    constexpr double largest = 8.9999;
    double value = std::isnan(sharpness) ? 0.0 : sharpness;
    if (value > 0.0) {
        const double area = static_cast<double>(width) * height;
        value *= std::clamp(std::pow(0.5 * std::sqrt(0.96 * area / 19200.0), 1.6), 0.0, 1.0);
    } else {
        value = -value;
    }
    value = std::clamp(value, 0.0, largest);
    const double level = std::floor(value);
    return {value, static_cast<int32_t>(level), value - level};
}

double MixRows(const SharpnessRows& rows, const Strength& strength, size_t column) {
    const int32_t low = rows[static_cast<size_t>(strength.level)][column];
    const int32_t high = rows[static_cast<size_t>(strength.level) + 1][column];
    return (high - low) * strength.fraction + low;
}

void DesignFilters(EnhancementEngine& engine, const Strength& strength, int32_t horizontalMode) {
    PrototypeKernel& horizontal = engine.responses[0];
    PrototypeKernel& vertical = engine.responses[1];
    DesignPrototype(horizontal, HorizontalDesign(engine, horizontalMode));
    DesignPrototype(vertical, VerticalDesign(engine, strength));
    if (engine.spectrumTrim == 1)
        TruncateSpectrum(horizontal, 5);
    else if (engine.spectrumTrim == 2)
        TruncateSpectrum(horizontal, 4);
    NormalisePrototype(horizontal);
    engine.tapsHorizontal = DesignThreeHalvesTaps(horizontal);
    engine.tapsVertical = DesignThreeHalvesTaps(vertical);
}

}  // namespace clarivex
