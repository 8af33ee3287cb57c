#include "engine/sleeping/noise_reduction.h"

#include <cmath>

#include "engine/tuning_tables.h"

namespace clarivex {
namespace {

constexpr double kneeShare = 0.94;       // of what the table gives for a level
constexpr double wideKnee = 1.2;         // the wide kernel measures larger detail
constexpr double chromaKnee = 0.63;      // chroma carries less
constexpr double chromaFromLevel = 2.5;  // weaker noise is left in chroma

// The gated kernels take away noise where it stands alone, and may so be stronger, in log2 of a gain.
constexpr double gatedNarrowGain = 3.8;
constexpr double gatedWideGain = 3.1;
constexpr double gatedRowsKnee = 1.0;
constexpr double gatedColumnsKnee = 1.01;

double KneeOf(double level) {
    double whole = std::floor(level);
    double fraction = level - whole;
    if (whole >= 6.0) {
        whole = 5.0;
        fraction = 0.9999;
    }
    const auto row = static_cast<size_t>(whole);
    // The lower entry counts in full, whatever the fraction: kept so that pictures stay what they were.
    return (fraction * noiseLevels[row + 1] + noiseLevels[row]) * kneeShare;
}

/// Removes detail below the knee: in log2 a gain of −500 takes all of it away, and +500 above brings it back.
SharpenParams Remover(double knee) {
    SharpenParams params;
    params.baseGainLog2 = -500.0F;
    params.extraGainLog2 = 500.0F;
    params.knee = static_cast<float>(knee);
    return params;
}

void Strengthen(SharpenParams& params, double gain, double kneeFactor) {
    params.knee = static_cast<float>(params.knee * kneeFactor);
    params.baseGainLog2 = static_cast<float>(params.baseGainLog2 + gain);
}

/// The kernels of an axis: the narrow one from the first stage on, the wide one from the second, gated at the third.
PreStageGains PlanAxis(double knee, int32_t noiseStages, bool gatedAllowed, double gatedKneeFactor) {
    PreStageGains axis;
    if (noiseStages >= 1) axis.narrow = Remover(knee);
    const SharpenParams wide = noiseStages >= 2 ? Remover(wideKnee * knee) : SharpenParams{};
    const bool wideActive = IsSharpenActive(wide);
    const bool gated = noiseStages >= 3 && gatedAllowed;
    if (wideActive) axis.wide = wide;
    if (gated && wideActive) {
        axis.gated = true;
        Strengthen(axis.narrow, gatedNarrowGain, gatedKneeFactor);
        Strengthen(axis.wide, gatedWideGain, gatedKneeFactor);
    } else if (wideActive) {
        axis.kernel = PreKernel::knee;
    } else {
        axis.kernel = gated || IsSharpenActive(axis.narrow) ? PreKernel::narrow : PreKernel::none;
    }
    return axis;
}

}  // namespace

NoiseReduction PlanNoiseReduction(const NoiseReductionSettings& settings, const ScaleModes& modes) {
    const bool doubled = modes == ScaleModes{AxisScale::twofold, AxisScale::twofold};
    const double level = !doubled && settings.noiseReduction > 0.0F ? settings.noiseReduction : 0.0;
    NoiseReduction reduction;
    reduction.knee = KneeOf(level);
    const bool forced = modes.horizontal == AxisScale::threeHalves && (settings.forceDetailA || settings.forceDetailB);
    if (level <= 0.0 && !forced) return reduction;
    reduction.columns = PlanAxis(reduction.knee, settings.noiseStagesV, settings.gatedSharpen, gatedColumnsKnee);
    reduction.rows = PlanAxis(reduction.knee, settings.noiseStagesH, settings.gatedSharpen, gatedRowsKnee);
    reduction.smoothsChroma = level >= chromaFromLevel;
    reduction.chroma = reduction.rows.narrow;
    reduction.chroma.knee = static_cast<float>(reduction.rows.narrow.knee * chromaKnee);
    return reduction;
}

}  // namespace clarivex
