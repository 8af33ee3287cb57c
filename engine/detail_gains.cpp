// All gains are log2 of a factor. Constants are single-precision where they carry an F: their last places are part of the
// gains.
#include "engine/detail_gains.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

/// What becomes of a wanted gain: max(factor · Compress(slope · (gain + shift), limit) − least, 0).
struct GainCurve {
    double shift, slope, limit, factor, least;
};

/// Curves of rows: where the strength fades in, at its full share, and of the wide kernel.
struct RowCurves {
    GainCurve faint, narrow, wide;
};

// clang-format off
//                                    shift   slope  limit  factor  least
constexpr RowCurves scaledRows {  {   0.0,    1.0,   1.0,   1.0,    0.0  },
                                  {   0.0,    1.0,   1.0,   1.0,    0.0  },
                                  {  -0.9,    1.0,   1.8,   1.0,    0.2  }  };
constexpr RowCurves keptRows   {  {   0.59,   1.0,   1.8,   0.75,   0.0  },
                                  {   0.59,   1.0,   2.5,   0.75,   0.0  },
                                  {  -2.05,   0.46,  1.8,   1.0,    0.3  }  };
constexpr GainCurve columnCurve   {   0.0,    1.0,   1.0,   1.0,    0.0  };
// clang-format on

/// Gains below 0 fade out instead of turning into smoothing, and large ones end at 1.4 times a limit.
double Compress(double gain, double limit) {
    constexpr double atZero = 0.61;
    constexpr double fade = 0.346;  // by which a gain of −1 is smaller than one of 0
    constexpr double reach = 1.4;
    const double soft = gain < 0.0 ? atZero * std::pow(fade, -gain) : gain + atZero;
    return std::min(reach * limit, std::max(0.0, soft));
}

double Follow(const GainCurve& curve, double gain) {
    return std::max(curve.factor * Compress(curve.slope * (gain + curve.shift), curve.limit) - curve.least, 0.0);
}

constexpr double strengthToGain = 1.1;
constexpr double zoomToGain = 0.6;        // an enlarged picture needs less
constexpr double faintRowGain = -0.121F;  // where the strength fades in
constexpr double faintColumnGain = 0.429F;
constexpr double faintShare = 0.15;  // shares of the strength below this fade in

constexpr double strengthSlope = 2.6;
constexpr double strengthShift = 0.5;
constexpr double keptRowsFactor = 1.6;

// Weak strengths go to the narrow kernel; only above a share the wide one follows.
constexpr double weakShare = 0.18;
constexpr double strongShare = 0.82;
constexpr double weakNarrowGain = 0.7;
constexpr double weakWideGain = 0.25;

// Coring: sizes of detail below which nothing is sharpened.
constexpr double rowCoring = 2.66 * 0.52 * 0.6;
constexpr double columnCoring = 2.66 * 0.52 * 0.9;
constexpr double noiseCoring = 0.62;
constexpr double leastNoiseKnee = 0.2;
constexpr double mostNoiseCoring = 3.0;

constexpr double strongestStrength = 9.0;

void Add(SharpenParams& params, double gain) { params.baseGainLog2 = static_cast<float>(params.baseGainLog2 + gain); }

/// Moves gain from below the knee to above it.
void Shift(SharpenParams& params, double gain) {
    params.baseGainLog2 = static_cast<float>(params.baseGainLog2 - gain);
    params.extraGainLog2 = static_cast<float>(params.extraGainLog2 + gain);
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

/// The gains of one frame. Run tells the steps in order; the numbers between them are log2 gains or shares of the strength.
class GainPlanner {
public:
    GainPlanner(const DetailSettings& detailSettings, const DetailInputs& detailInputs)
        : settings(detailSettings),
          inputs(detailInputs),
          // Level tables and post filter take the place of gains driven by the strength.
          driven(settings.curveSharpening || settings.sharpenScheme != SharpenScheme::levelTables),
          share(driven ? inputs.strength.value / strongestStrength : 0.0),
          rowStrength(share),
          columnStrength(share),
          narrowShare(share) {}

    DetailGains Run() {
        const DisplayFactors factors = Factors();
        DetailGains gains;
        AddBaseGain(gains);
        gains.outputNoise = OutputNoise(factors);
        SpreadStrength();
        TakeFixedGains();
        SplitNarrowAndWide();
        AddNarrowGains(factors, gains);
        AddWideGain(gains.postWide);
        SetCoring(gains);
        return gains;
    }

private:
    bool ThreeHalves() const { return inputs.modes.horizontal == AxisScale::threeHalves; }
    bool Twofold() const { return inputs.modes.horizontal == AxisScale::twofold; }
    bool RowsScaled() const { return inputs.modes.horizontal != AxisScale::none; }

    DisplayFactors Factors() const {
        const auto threeHalvesOf = [](int32_t length) { return static_cast<int32_t>(std::nearbyint(1.5 * length)); };
        const FrameSize& size = inputs.size;
        const bool higher = inputs.modes.vertical == AxisScale::threeHalves;
        return FactorsOf(threeHalvesOf(size.width), higher ? threeHalvesOf(size.height) : size.height, inputs.aspect);
    }

    void AddBaseGain(DetailGains& gains) const {
        const double gain = settings.baseDetailGain * 0.3;
        gains.postNarrowH.baseGainLog2 = gains.postNarrowV.baseGainLog2 = static_cast<float>(gain);
    }

    float OutputNoise(const DisplayFactors& factors) const {
        constexpr double leastZoom = 1.3;
        const double enlargement = std::max(factors.x, leastZoom) * std::max(factors.y, leastZoom);
        const double gain = (4.0 * rowStrength + 1.0) * inputs.ditherGain / std::sqrt(enlargement);
        return static_cast<float>(gain * 1.2);
    }

    void SpreadStrength() {
        if (rowStrength == 0.0) return;
        rowStrength = strengthSlope * rowStrength - strengthShift;
        columnStrength = strengthSlope * columnStrength;
    }

    void TakeFixedGains() {
        if (RowsScaled()) {
            narrow = (Twofold() ? settings.twofoldNarrowGain : settings.fusedNarrowGain) / 10.0;
            wide = (Twofold() ? settings.twofoldWideGain : settings.fusedWideGain) / 20.0;
        }
        if (inputs.modes.vertical != AxisScale::none)
            vertical = settings.verticalDetailGain / 10.0;
        else if (settings.sharpenScheme == SharpenScheme::levelTables)
            vertical = MixRows(verticalGainRows, inputs.strength, 0) / 10.0;
    }

    void SplitNarrowAndWide() {
        if (!RowsScaled()) {
            rowStrength *= keptRowsFactor;
            narrowShare *= keptRowsFactor;
            return;
        }
        const double weak = std::min(narrowShare / weakShare, 1.0);
        const double strong = (narrowShare - weakShare) / strongShare;
        narrow += weakNarrowGain * weak;
        wide -= weakWideGain * weak;
        rowStrength = strengthSlope * strong - strengthShift;
        narrowShare = std::max(strong, 0.0);
    }

    void AddNarrowGains(const DisplayFactors& factors, DetailGains& gains) {
        const RowCurves& curves = RowsScaled() ? scaledRows : keptRows;
        const double rowZoom = zoomToGain * std::log2(std::max(factors.x, 1.0));
        const double columnZoom = zoomToGain * std::log2(std::max(factors.y, 1.0));
        rowGain = strengthToGain * rowStrength - rowZoom;
        double row = Follow(curves.narrow, rowGain);
        double column = Follow(columnCurve, strengthToGain * columnStrength - columnZoom);
        if (narrowShare < faintShare) row = Follow(curves.faint, faintRowGain - rowZoom) * narrowShare / faintShare;
        if (share < faintShare) column = Follow(columnCurve, faintColumnGain - columnZoom) * share / faintShare;
        Add(gains.postNarrowH, row);
        Add(gains.postNarrowV, column);
        Add(gains.postNarrowH, narrow);
        Add(gains.postNarrowV, vertical);
    }

    void AddWideGain(SharpenParams& postWide) const {
        const bool none = inputs.strength.value == 0.0 || !driven;
        Add(postWide, none ? 0.0 : Follow((RowsScaled() ? scaledRows : keptRows).wide, rowGain));
        Add(postWide, wide);
        if (!RowsScaled()) return;
        Shift(postWide, wide);
        Shift(postWide, -(Twofold() ? settings.wideShift2x : settings.wideShift15) / 20.0);
        postWide.knee = static_cast<float>(ThreeHalves() ? settings.wideKneeStep15 : settings.wideKneeStep2x);
    }

    void SetCoring(DetailGains& gains) const {
        if (settings.coringLevel == 0) return;
        const double noiseKnee = std::min(noiseCoring * (inputs.noiseKnee - leastNoiseKnee), mostNoiseCoring);
        gains.postNarrowV.knee = static_cast<float>(std::max(columnCoring, noiseKnee));
        gains.postNarrowH.knee = static_cast<float>(std::max(rowCoring, noiseKnee));
        Shift(gains.postNarrowH, gains.postNarrowH.baseGainLog2);
        Shift(gains.postNarrowV, gains.postNarrowV.baseGainLog2);
    }

    const DetailSettings& settings;
    const DetailInputs& inputs;
    bool driven;
    double share;           // of the strongest strength
    double rowStrength;     // drives the gains along rows
    double columnStrength;  // and down columns
    double narrowShare;     // what of the share goes to the narrow kernel of the rows
    double narrow = 0.0;
    double wide = 0.0;
    double vertical = 0.0;
    double rowGain = 0.0;
};

}  // namespace

DetailGains PlanDetailGains(const DetailSettings& settings, const DetailInputs& inputs) {
    return GainPlanner(settings, inputs).Run();
}

}  // namespace clarivex
