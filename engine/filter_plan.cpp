#include "engine/filter_plan.h"

#include <algorithm>

namespace clarivex {
namespace {

constexpr int32_t sharperColumns = 6;  // hundredths that the columns' cut-off lies higher

// Comb pairs whose weights follow the strength stand one and two samples from the centre.
constexpr double shapedOffsetA = 64.0;
constexpr double shapedOffsetB = 128.0;

PrototypeDesign DesignOf(const PrototypeSettings& settings, int32_t cutoffHundredths) {
    PrototypeDesign design;
    design.beta = settings.kernelBeta / 10.0;
    design.cutoff = std::max(static_cast<double>(cutoffHundredths), 0.5) / 100.0;
    design.window = settings.windowKind;
    return design;
}

PrototypeDesign RowsDesign(const EngineSettings& settings, AxisScale horizontal) {
    PrototypeDesign design = DesignOf(settings.prototype, settings.prototype.kernelCutoff);
    const CombSettings& comb = horizontal == AxisScale::twofold
                                   ? twofoldCombs[settings.order.tuningSet == TuningSet::first ? 0 : 1]
                                   : horizontalComb;
    design.combWeightA = comb.weightA * combWeightUnit;
    design.combWeightB = comb.weightB * combWeightUnit;
    design.combOffsetA = comb.offsetA;
    design.combOffsetB = comb.offsetB;
    return design;
}

/// What the strength adds to a weight of the comb: mixed between its rows.
double ShapedWeight(const Strength& strength, size_t column, int32_t base) {
    const auto& row = verticalShapeRows[static_cast<size_t>(strength.level)];
    const auto& next = verticalShapeRows[static_cast<size_t>(strength.level) + 1];
    return (row[column] + base) + (next[column] - row[column]) * strength.fraction;
}

PrototypeDesign ColumnsDesign(const EngineSettings& settings, const Strength& strength) {
    PrototypeDesign design = DesignOf(settings.prototype, settings.prototype.kernelCutoff + sharperColumns);
    double weightA = verticalComb.weightA;
    double weightB = verticalComb.weightB;
    design.combOffsetA = verticalComb.offsetA;
    design.combOffsetB = verticalComb.offsetB;
    if (settings.detail.sharpenScheme == SharpenScheme::levelTables) {
        weightA = ShapedWeight(strength, 0, verticalComb.weightA);
        weightB = ShapedWeight(strength, 1, verticalComb.weightB);
        design.combOffsetA = shapedOffsetA;
        design.combOffsetB = shapedOffsetB;
    }
    design.combWeightA = weightA * combWeightUnit;
    design.combWeightB = weightB * combWeightUnit;
    return design;
}

}  // namespace

FilterPlan PlanFilters(const EngineSettings& settings, const Strength& strength, AxisScale horizontal) {
    return {RowsDesign(settings, horizontal), settings.prototype.spectrumTrim, ColumnsDesign(settings, strength)};
}

FilterTaps DesignTaps(const FilterPlan& plan) {
    FilterTaps taps;
    DesignPrototype(taps.horizontalResponse, plan.horizontal);
    PrototypeKernel vertical;
    DesignPrototype(vertical, plan.vertical);
    if (plan.horizontalTrim == SpectrumTrim::toFive)
        TruncateSpectrum(taps.horizontalResponse, 5);
    else if (plan.horizontalTrim == SpectrumTrim::toFour)
        TruncateSpectrum(taps.horizontalResponse, 4);
    NormalisePrototype(taps.horizontalResponse);
    taps.horizontal = DesignThreeHalvesTaps(taps.horizontalResponse);
    taps.vertical = DesignThreeHalvesTaps(vertical);
    return taps;
}

}  // namespace clarivex
