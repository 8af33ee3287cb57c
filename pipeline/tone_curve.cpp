#include "pipeline/tone_curve.h"

namespace clarivex {
namespace {

constexpr double neutralBias = 50;
constexpr double videoBlack = 16;
constexpr double videoRange = 219;
constexpr double perRange = static_cast<float>(1 / videoRange);  // to normalised luma

/// f[3]·x³ + f[2]·x² + f[1]·x + f[0]
struct Cubic {
    double f3 = 0;
    double f2 = 0;
    double f1 = 0;
    double f0 = 0;
};

/// The shape of the curve, worked out from the settings.
struct ToneShape {
    double whiteBias;   // below 50 it lowers the white end
    double blackBias;   // above 50 it raises the black end
    double saturation;  // factor of chroma
    Cubic curve;        // on normalised luma; keeps 0 and 1
};

/// Keeps −1, 0 and 1, and is flatter around 0.
double SoftCube(double x) { return 0.334 * x * x * x + 0.666 * x; }

/// What a bias of either side of 50 is multiplied by.
struct SideSlopes {
    double above;
    double below;

    double Of(double bias) const { return bias > neutralBias ? above : below; }
};
constexpr SideSlopes brightnessSlopes{0.6, 1.1};  // brightening is held back
constexpr SideSlopes whiteBends{1.4, 0.16};       // hundredths of the curve's slope at white
constexpr SideSlopes blackBends{0.2, 1.4};        // and at black

double BrightnessBias(double bias) {
    const double t = (0.6 * SoftCube(bias / 50 - 1) + 1) * 50;
    return (t - neutralBias) * brightnessSlopes.Of(t) + neutralBias;
}

/// 1 at biases of 50 and 50.
double RangeGain(double whiteBias, double blackBias) { return ((whiteBias + 50) / 100) * ((150 - blackBias) / 100); }

/// Normalised luma with slope 1 + blackSlope at 0 and 1 + whiteSlope at 1.
Cubic ContrastCurve(double blackSlope, double whiteSlope) {
    return {.f3 = blackSlope + whiteSlope, .f2 = -2 * blackSlope - whiteSlope, .f1 = blackSlope + 1, .f0 = 0};
}

ToneShape ShapeOf(const ToneSettings& settings, bool lightingEnabled) {
    const bool active = settings.toneEnabled && !settings.toneSuspended;
    const double p = active ? settings.colourBiasA : neutralBias;
    const double r = active ? settings.colourBiasB : neutralBias;
    const double q = active ? settings.colourBiasC : neutralBias;
    const bool sloped = active && lightingEnabled;
    const double blackSlope = sloped ? settings.toneBlackSlope : 0;
    const double whiteSlope = sloped ? settings.toneWhiteSlope : 0;

    const double v = BrightnessBias(r);
    double gain = RangeGain(p, v);
    gain = gain > 1 ? (gain - 1) * 0.2 + 1 : gain;  // gains above 1 are held back
    const double saturation = (SoftCube(q / 50 - 1) + 1) * 50 * gain;

    const double whiteBend = (neutralBias - p) * whiteBends.Of(p);
    const double blackBend = -((neutralBias - v) * blackBends.Of(v));
    return {.whiteBias = static_cast<float>(p < neutralBias ? p : neutralBias),
            .blackBias = v > neutralBias ? v : neutralBias,
            .saturation = static_cast<float>(saturation) / neutralBias,
            .curve = ContrastCurve((blackSlope + 2 * blackBend) * 0.01, (whiteSlope + 2 * whiteBend) * 0.01)};
}

/// The curve applied to corrected luma, as a cubic of the sample.
Cubic Compose(const Cubic& curve, const LightingCorrection& correction) {
    const double c1 = static_cast<float>(correction.lumaGain * perRange);
    const double c0 = static_cast<float>(correction.lumaOffset * perRange - videoBlack / videoRange);
    if (curve.f3 == 0 && curve.f2 == 0) {
        return {.f3 = correction.cubic * perRange * curve.f1,
                .f2 = correction.square * perRange * curve.f1,
                .f1 = c1 * curve.f1,
                .f0 = c0 * curve.f1};
    }
    const double s = curve.f3;
    const double a = curve.f2;
    return {.f3 = s * c1 * c1 * c1,
            .f2 = 3 * s * c1 * c1 * c0 + a * c1 * c1,
            .f1 = 3 * s * c1 * c0 * c0 + 2 * a * c1 * c0 + curve.f1 * c1,
            .f0 = s * c0 * c0 * c0 + a * c0 * c0 + curve.f1 * c0};
}

void StoreLuma(const Cubic& cubic, const ToneShape& shape, LightingCorrection& correction) {
    const double range = RangeGain(shape.whiteBias, shape.blackBias);
    const double lift = (shape.blackBias - 50) / 100;
    const double scale = videoRange * perRange * range * videoRange;
    const double offset = perRange * (videoRange * cubic.f0 + videoBlack) - videoBlack / videoRange;
    correction.cubic = static_cast<float>(cubic.f3 * scale);
    correction.square = static_cast<float>(cubic.f2 * scale);
    correction.lumaGain = static_cast<float>(cubic.f1 * scale);
    correction.lumaOffset = static_cast<float>((offset * range + lift) * videoRange + videoBlack);
}

void ScaleChroma(double saturation, float& gain, float& offset) {
    constexpr double neutralChroma = 128;
    gain = static_cast<float>(gain * saturation);
    offset = static_cast<float>((offset - neutralChroma) * saturation + neutralChroma);
}

}  // namespace

void ToneCurve(const ToneSettings& settings, bool lightingEnabled, LightingCorrection& correction) {
    const ToneShape shape = ShapeOf(settings, lightingEnabled);
    StoreLuma(Compose(shape.curve, correction), shape, correction);
    ScaleChroma(shape.saturation, correction.chromaGainU, correction.chromaOffsetU);
    ScaleChroma(shape.saturation, correction.chromaGainV, correction.chromaOffsetV);
}

}  // namespace clarivex
