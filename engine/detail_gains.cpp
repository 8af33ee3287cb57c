#include "engine/detail_gains.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

void Add(SharpenParams& params, double gain) { params.baseGainLog2 = static_cast<float>(params.baseGainLog2 + gain); }

/// Moves gain from below the knee to above it.
void Shift(SharpenParams& params, double gain) {
    params.baseGainLog2 = static_cast<float>(params.baseGainLog2 - gain);
    params.extraGainLog2 = static_cast<float>(params.extraGainLog2 + gain);
}

double NoiseKnee(double level) {
    double whole = std::floor(level);
    double fraction = level - whole;
    if (whole >= 6.0) {
        whole = 5.0;
        fraction = 0.9999;
    }
    const auto row = static_cast<size_t>(whole);
    // The lower entry counts in full, whatever the fraction.
    return (fraction * noiseLevels[row + 1] + noiseLevels[row]) * 0.94;
}

/// Removes detail below the knee: in log2 a gain of −500 takes all of it away, and +500 above brings it back.
SharpenParams Remover(double knee) {
    SharpenParams params;
    params.baseGainLog2 = -500.0F;
    params.extraGainLog2 = 500.0F;
    params.knee = static_cast<float>(knee);
    return params;
}

/// The two records of an axis: `narrow` for the first noise stage, `wide` for the second.
struct AxisRecords {
    SharpenParams narrow;
    SharpenParams wide;
};

/// Where the decisions of an axis go.
struct AxisStages {
    int16_t& gated;
    int16_t& mode;
    SharpenParams& narrow;
    SharpenParams& wide;
};

void SetUpAxis(AxisRecords& records, int16_t noiseStages, bool gatedAllowed, double gatedKneeFactor,
               const AxisStages& out) {
    if (noiseStages < 2) records.wide = {};
    if (noiseStages < 1) records.narrow = {};
    const bool wideActive = IsSharpenActive(records.wide);
    const bool gated = noiseStages >= 3 && gatedAllowed;
    if (gated && wideActive) {
        records.narrow.knee = static_cast<float>(records.narrow.knee * gatedKneeFactor);
        records.wide.knee = static_cast<float>(records.wide.knee * gatedKneeFactor);
        Add(records.wide, 3.1);
        Add(records.narrow, 3.8);
        out.gated = 2;
        out.wide = records.wide;
    } else if (gated) {
        out.mode = 1;
    } else if (wideActive) {
        out.mode = 2;
        out.wide = records.wide;
    } else {
        out.mode = IsSharpenActive(records.narrow) ? 1 : 0;
    }
    out.narrow = records.narrow;
}

/// A picture's size on screen divided by its own, for both axes.
struct DisplayFactors {
    double x;
    double y;
};

/// Without a video window to ask, the picture is shown in a window of its own size and keeps its aspect in it.
DisplayFactors FactorsOf(int32_t width, int32_t height, double aspect) {
    const double ratio = static_cast<double>(width) / height;
    const double wantedWidth = std::nearbyint(height * ratio / aspect);
    const double wantedHeight = std::nearbyint(width * aspect / ratio);
    if (wantedWidth < width) return {wantedWidth / width, 1.0};
    if (wantedHeight < height) return {1.0, wantedHeight / height};
    return {1.0, 1.0};
}

double Compress(double x, double limit) {
    const double y = x < 0.0 ? 0.61 * std::pow(0.346, -x) : x + 0.61;
    return std::min(1.4 * limit, std::max(0.0, y));
}

/// Gains of the stages behind the scaler, before they go into the records.
class DetailGains {
public:
    DetailGains(const EngineSettings& settings, const DetailInputs& inputs) : settings(settings), inputs(inputs) {
        // Level tables and post filter take the place of gains driven by the strength.
        gate = settings.curveSharpening == 0 && settings.sharpenScheme > 1;
        const double share = inputs.strength.value / 9.0;
        rowStrength = columnStrength = gate ? 0.0 : share;
        narrowShare = gate ? 0.0 : share;
        columnShare = share;
    }

    float Run(StageSettings& stages) {
        const DisplayFactors factors = Factors();
        const float noise = OutputNoise(factors);
        SpreadStrength();
        TakeFixedGains();
        SplitNarrowAndWide();
        AddNarrowGains(factors, stages);
        AddWideGain(stages);
        SetCoring(stages);
        return noise;
    }

private:
    bool ThreeHalves() const { return inputs.modes.horizontal == 1; }
    bool Twofold() const { return inputs.modes.horizontal == 2; }
    bool RowsScaled() const { return inputs.modes.horizontal != 0; }

    DisplayFactors Factors() const {
        const auto width = static_cast<int32_t>(std::nearbyint(1.5 * inputs.width));
        const int32_t height =
            inputs.modes.vertical == 1 ? static_cast<int32_t>(std::nearbyint(1.5 * inputs.height)) : inputs.height;
        return FactorsOf(width, height, inputs.aspect);
    }

    float OutputNoise(const DisplayFactors& factors) const {
        if (inputs.bypass) return 0.0F;
        const double enlargement = std::max(factors.x, 1.3) * std::max(factors.y, 1.3);
        const double gain = (4.0 * rowStrength + 1.0) * settings.ditherGain / std::sqrt(enlargement);
        return static_cast<float>(gain * 1.2);
    }

    void SpreadStrength() {
        if (rowStrength == 0.0) return;
        rowStrength = 2.6 * rowStrength - 0.5;
        if (columnStrength != 0.0) columnStrength = 2.6 * columnStrength;
    }

    void TakeFixedGains() {
        if (RowsScaled()) {
            narrow = (Twofold() ? settings.twofoldNarrowGain : settings.fusedNarrowGain) / 10.0;
            wide = (Twofold() ? settings.twofoldWideGain : settings.fusedWideGain) / 20.0;
        }
        if (inputs.modes.vertical != 0)
            vertical = settings.verticalDetailGain / 10.0;
        else if (settings.sharpenScheme > 1)
            vertical = MixRows(verticalGainRows, inputs.strength, 0) / 10.0;
    }

    /// Weak strengths go to the narrow kernel; only above a threshold the wide one follows.
    void SplitNarrowAndWide() {
        if (!RowsScaled()) {
            rowStrength *= 1.6;
            narrowShare *= 1.6;
            return;
        }
        constexpr double threshold = 0.18;
        const double weak = std::min(narrowShare / threshold, 1.0);
        const double strong = (narrowShare - threshold) / 0.82;
        narrow += 0.7 * weak;
        wide -= 0.25 * weak;
        rowStrength = 2.6 * strong - 0.5;
        narrowShare = std::max(strong, 0.0);
    }

    void AddNarrowGains(const DisplayFactors& factors, StageSettings& stages) {
        constexpr double rowOffset = -0.121F;
        constexpr double columnOffset = 0.429F;
        constexpr double faint = 0.15;  // strengths below it fade the gain in
        const double rowZoom = 0.6 * std::log2(std::max(factors.x, 1.0));
        const double columnZoom = 0.6 * std::log2(std::max(factors.y, 1.0));
        rowGain = 1.1 * rowStrength - rowZoom;
        const double columnGain = 1.1 * columnStrength - columnZoom;
        const double rowBase = rowOffset - rowZoom;
        const double leastRow = RowsScaled() ? Compress(rowBase, 1.0) : 0.75 * Compress(rowBase + 0.59, 1.8);
        const double leastColumn = Compress(columnOffset - columnZoom, 1.0);
        double row = RowsScaled() ? Compress(rowGain, 1.0) : 0.75 * Compress(rowGain + 0.59, 2.5);
        double column = Compress(columnGain, 1.0);
        if (narrowShare < faint) row = leastRow * narrowShare / faint;
        const double columnFade = gate ? 0.0 : columnShare;
        if (columnFade < faint) column = leastColumn * columnFade / faint;
        Add(stages.postNarrowH, row);
        Add(stages.postNarrowV, column);
        Add(stages.postNarrowH, narrow);
        Add(stages.postNarrowV, vertical);
    }

    void AddWideGain(StageSettings& stages) const {
        double gain = RowsScaled() ? std::max(Compress(rowGain - 0.9, 1.8) - 0.2, 0.0)
                                   : std::max(Compress(0.46 * (rowGain - 2.05), 1.8) - 0.3, 0.0);
        if (inputs.strength.value == 0.0 || gate) gain = 0.0;
        Add(stages.postWide, gain);
        Add(stages.postWide, wide);
        if (RowsScaled()) {
            Shift(stages.postWide, wide);
            Shift(stages.postWide, -(Twofold() ? settings.wideShift2x : settings.wideShift15) / 20.0);
        }
        const int32_t kneeStep = ThreeHalves() ? settings.wideKneeStep15 : Twofold() ? settings.wideKneeStep2x : 0;
        stages.postWide.knee = static_cast<float>(kneeStep * 0.2 * 10.0 * 0.5);
    }

    void SetCoring(StageSettings& stages) const {
        if (settings.coringLevel == 0) {
            stages.postNarrowH.knee = stages.postNarrowV.knee = 0.0F;
            return;
        }
        constexpr double coring = 2.66;  // the same for every level
        const double noiseKnee = std::min(0.62 * (inputs.noiseKnee - 0.2), 3.0);
        stages.postNarrowV.knee = static_cast<float>(std::max(coring * 0.52 * 0.9, noiseKnee));
        stages.postNarrowH.knee = static_cast<float>(std::max(coring * 0.52 * 0.6, noiseKnee));
        Shift(stages.postNarrowH, stages.postNarrowH.baseGainLog2);
        Shift(stages.postNarrowV, stages.postNarrowV.baseGainLog2);
    }

    const EngineSettings& settings;
    const DetailInputs& inputs;
    bool gate;
    double rowStrength;     // drives the gains along rows
    double columnStrength;  // and down columns
    double narrowShare;
    double columnShare;
    double narrow = 0.0;
    double wide = 0.0;
    double vertical = 0.0;
    double rowGain = 0.0;
};

}  // namespace

NoiseReduction SetUpNoiseReduction(const EngineSettings& settings, ScaleModes modes, bool bypass,
                                   StageSettings& stages) {
    NoiseReduction reduction;
    const bool twofoldBoth = modes.horizontal == 2 && modes.vertical == 2;
    if (!bypass && !twofoldBoth && settings.noiseReduction > 0.0F) reduction.level = settings.noiseReduction;
    reduction.knee = NoiseKnee(reduction.level);
    const bool forced = modes.horizontal == 1 && (settings.forceDetailA != 0 || settings.forceDetailB != 0);
    if (reduction.level <= 0.0 && !forced) return reduction;
    const AxisRecords records{Remover(reduction.knee), Remover(1.2 * reduction.knee)};
    AxisRecords rows = records;
    AxisRecords columns = records;
    const bool gatedAllowed = settings.gatedSharpen != 0;
    SetUpAxis(columns, settings.noiseStagesV, gatedAllowed, 1.01,
              {stages.gatedV, stages.preModeV, stages.preNarrowV, stages.preWideV});
    SetUpAxis(rows, settings.noiseStagesH, gatedAllowed, 1.0,
              {stages.gatedH, stages.preModeH, stages.preNarrowH, stages.preWideH});
    reduction.smoothsChroma = reduction.level >= 2.5;
    reduction.smoothing = rows.narrow;
    reduction.smoothing.knee = static_cast<float>(rows.narrow.knee * 0.63);
    return reduction;
}

float SetUpDetailGains(const EngineSettings& settings, const DetailInputs& inputs, StageSettings& stages) {
    return DetailGains(settings, inputs).Run(stages);
}

}  // namespace clarivex
