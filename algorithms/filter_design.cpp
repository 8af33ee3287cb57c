// Designs the resampling filters: plain double precision, far from the pixel loops.
#include "algorithms/filter_design.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <numeric>
#include <span>

#include "algorithms/rounding.h"
#include "runtime/diagnostics.h"

namespace clarivex {
namespace {

/// Table entries for one input sample.
constexpr double entriesPerSample = 64.0;

double Sinc(double t) { return std::fabs(t) < 1e-9 ? 1.0 : std::sin(t) / t; }

/// Sum of coefficients[i] · x^i.
double Polynomial(std::span<const double> coefficients, double x) {
    double sum = 0.0;
    for (size_t i = coefficients.size(); i-- > 0;) sum = sum * x + coefficients[i];
    return sum;
}

/// Modified Bessel function of the first kind, order zero: Abramowitz and Stegun 9.8.1 and 9.8.2.
double BesselI0(double x) {
    constexpr double smallLimit = 3.75;
    constexpr double small[] = {1.0, 3.5156229, 3.0899424, 1.2067492, 0.2659732, 0.0360768, 0.0045813};
    constexpr double large[] = {0.39894228,  0.01328592, 0.00225319,  -0.00157565, 0.00916281,
                                -0.02057706, 0.02635537, -0.01647633, 0.00392377};
    const double magnitude = std::fabs(x);
    const double t = magnitude / smallLimit;
    if (magnitude < smallLimit) return Polynomial(small, t * t);
    return std::exp(magnitude) / std::sqrt(magnitude) * Polynomial(large, 1.0 / t);
}

/// The window at position u, 0.5 in the kernel's centre and 1 at its end.
double Window(const PrototypeDesign& design, double u) {
    switch (design.window) {
        case WindowKind::kaiser: {
            if (u < 0.0 || u > 1.0) return 0.0;
            const double fromCentre = 2.0 * u - 1.0;
            return BesselI0(design.beta * std::sqrt(1.0 - fromCentre * fromCentre)) / BesselI0(design.beta);
        }
        case WindowKind::sinc:
            if (u < 1e-8) return 1.0;
            return u > 1.0 ? 0.0 : Sinc(std::numbers::pi * u);
        default: return 1.0;
    }
}

/// Low-pass with two cosine combs on its frequency response, which lift the upper band.
double CombedLowPass(const PrototypeDesign& design, double x) {
    const double k = std::numbers::pi * design.cutoff / design.timeScale;
    const double centre = Sinc(k * x);
    const auto pairExcess = [&](double offset) {
        const double distance = offset / entriesPerSample;
        return Sinc(k * (x + distance)) + Sinc(k * (x - distance)) - 2.0 * centre;
    };
    return centre - design.combWeightA * pairExcess(design.combOffsetA) -
           design.combWeightB * pairExcess(design.combOffsetB);
}

/// A phase before quantisation: tap k at position k − 4.
using RawTaps = std::array<double, 8>;

/// Sum and first moment per unit of sum; integer taps are exact in doubles.
template <class Taps>
double SumOf(const Taps& taps) {
    return std::accumulate(taps.begin(), taps.end(), 0.0);
}

template <class Taps>
double CentreOf(const Taps& taps) {
    double moment = 0.0;
    for (size_t k = 0; k < taps.size(); ++k) moment += (static_cast<double>(k) - 4.0) * taps[k];
    return moment / SumOf(taps);
}

/// Kernel values at the distances 1/6, 1/2, 5/6 … 23/6 between which the three phases share out.
std::array<double, 12> SampleThirds(const PrototypeKernel& table) {
    std::array<double, 12> samples{};
    for (size_t j = 0; j < samples.size(); ++j) {
        const double x = (static_cast<double>(j) / 3.0 + 1.0 / 6.0) * entriesPerSample;
        const double whole = std::floor(x);
        const auto entry = static_cast<size_t>(whole);
        const double value = table[entry];
        samples[j] = value + (x - whole) * (table[entry + 1] - value);
    }
    return samples;
}

/// Taps of a phase out of the shared samples: the position 3i + phase counts from the centre, mirrored below 0.
RawTaps DealPhase(const std::array<double, 12>& samples, int32_t phase) {
    RawTaps taps{};
    for (int32_t i = -4; i < 4; ++i) {
        const int32_t position = 3 * i + phase;
        taps[static_cast<size_t>(i + 4)] = samples[static_cast<size_t>(position < 0 ? -position - 1 : position)];
    }
    return taps;
}

/// Adds the same amount to all taps so that their centre comes to `target`: eight taps at −4 … 3 gain eight times the
/// amount of sum and lose four times the amount of moment.
void MoveCentre(RawTaps& taps, double target) {
    const double divisor = 4.0 + 8.0 * target;
    const double shift = SumOf(taps) * (CentreOf(taps) - target) / divisor;
    for (double& tap : taps) tap += shift;
}

void NormaliseSum(RawTaps& taps) {
    const double sum = SumOf(taps);
    for (double& tap : taps) tap /= sum;
}

/// Sum of the taps of a phase of three halves.
constexpr int32_t unitGain = 255 * 64;

TapSet Quantise(const RawTaps& taps) {
    constexpr double fullScale = unitGain + 0.249F;  // what rounding makes of it is put right by RepairSum
    TapSet quantised{};
    for (size_t k = 0; k < taps.size(); ++k)
        quantised[k] = static_cast<int16_t>(RoundToNearest(static_cast<float>(fullScale * taps[k])));
    return quantised;
}

void Add(int16_t& tap, int32_t amount) { tap = static_cast<int16_t>(tap + amount); }

/// Gives what the sum lacks to the larger of the two inner taps, or half to each.
void RepairSum(TapSet& taps) {
    const int32_t missing = unitGain - std::accumulate(taps.begin(), taps.end(), 0);
    const int32_t left = std::abs(taps[3]);
    const int32_t right = std::abs(taps[4]);
    if (left > right) {
        Add(taps[3], missing);
    } else if (left < right) {
        Add(taps[4], missing);
    } else {
        Add(taps[3], missing >> 1);
        Add(taps[4], (missing + 1) >> 1);
    }
}

/// Shifts weight between the inner taps until the centre is at `target`; the sum stays.
void RepairMoment(TapSet& taps, double target) {
    const int32_t excess = RoundToNearest(SumOf(taps) * (CentreOf(taps) - target));
    Add(taps[3], excess);
    Add(taps[4], -excess);
}

TapSet FinishPhase(RawTaps taps, double target) {
    NormaliseSum(taps);
    TapSet quantised = Quantise(taps);
    RepairSum(quantised);
    RepairMoment(quantised, target);
    return quantised;
}

/// Position of the first phase of a twofold enlargement.
constexpr double twofoldTarget = -0.25;

RawTaps SampleQuarters(const PrototypeKernel& table) {
    RawTaps taps{};
    for (size_t k = 0; k < taps.size(); ++k) {
        // All these distances fall on entries of the table.
        const double distance = std::fabs(static_cast<double>(k) - 4.0 - twofoldTarget);
        taps[k] = table[static_cast<size_t>(distance * entriesPerSample)];
        Trace("%d : %d", static_cast<int>(k), static_cast<int>(RoundToNearest(32768.0 * taps[k])));
    }
    return taps;
}

TapSet QuantiseTwofold(const RawTaps& taps) {
    constexpr int32_t twofoldGain = 16384;
    TapSet quantised{};
    for (size_t k = 0; k < taps.size(); ++k) quantised[k] = static_cast<int16_t>(RoundToNearest(twofoldGain * taps[k]));
    Add(quantised[4], twofoldGain - std::accumulate(quantised.begin(), quantised.end(), 0));
    return quantised;
}

/// Unlike RepairMoment this doubles the moment's error of a few units instead of taking it away: kept so
/// that pictures stay identical between releases.
void ShiftTwofoldMoment(TapSet& taps) {
    Trace("Moment 200 (int) : %.6f", CentreOf(taps));
    const int32_t excess = RoundToNearest((CentreOf(taps) - twofoldTarget) * SumOf(taps));
    Add(taps[3], -excess);
    Add(taps[4], excess);
    Trace("Moment 200 (int) : %.6f", CentreOf(taps));
}

/// Tells the debugger how taps answer to a step that is smoothed by 1, 2, 1: each value, and the moment of all.
void TraceSmoothed(const TapSet& taps) {
    std::array<int32_t, 8> smoothed{};
    for (size_t k = 0; k < taps.size(); ++k) {
        const int32_t before = k > 0 ? taps[k - 1] : 0;
        const int32_t behind = k + 1 < taps.size() ? taps[k + 1] : 0;
        smoothed[k] = before + 2 * taps[k] + behind;
        Trace("%d : %d", static_cast<int>(k), static_cast<int>(smoothed[k]));
    }
    Trace("Moment 200 (2): %.6f", CentreOf(smoothed));
}

}  // namespace

void DesignPrototype(PrototypeKernel& table, const PrototypeDesign& design) {
    for (size_t i = 0; i < table.size(); ++i) {
        const double x = static_cast<double>(i) / entriesPerSample;
        const double u = x / (2.0 * design.halfWidth * design.timeScale) + 0.5;
        const double value = CombedLowPass(design, x) * Window(design, u) * design.cutoff * design.gain;
        table[i] = static_cast<float>(value);
    }
}

void TruncateSpectrum(PrototypeKernel& table, int32_t count) { std::fill(table.begin() + count, table.end(), 0.0F); }

void NormalisePrototype(PrototypeKernel& table) {
    const double bothSides = table[0] + 2.0 * std::accumulate(table.begin() + 1, table.end(), 0.0);
    const double integral = bothSides / entriesPerSample;
    for (float& value : table) value = static_cast<float>(value / integral);
}

ThreeHalvesTaps DesignThreeHalvesTaps(const PrototypeKernel& table) {
    // Sixths rounded to single precision: kept so that taps, and pictures, stay identical between releases.
    constexpr double targetA = -1.0F / 6.0F;
    constexpr double targetB = -3.0F / 6.0F;
    constexpr double targetC = -5.0F / 6.0F;

    const std::array<double, 12> samples = SampleThirds(table);
    RawTaps a = DealPhase(samples, 0);
    RawTaps c = DealPhase(samples, 2);
    MoveCentre(a, targetA);
    MoveCentre(c, targetC);
    return {FinishPhase(a, targetA), FinishPhase(DealPhase(samples, 1), targetB), FinishPhase(c, targetC)};
}

TwofoldTaps DesignTwofoldTaps(const PrototypeKernel& table) {
    RawTaps raw = SampleQuarters(table);
    MoveCentre(raw, twofoldTarget);
    Trace("Moment 200 (float) : %.6f", CentreOf(raw));
    NormaliseSum(raw);
    TwofoldTaps taps{QuantiseTwofold(raw), {}};
    ShiftTwofoldMoment(taps.a);
    TraceSmoothed(taps.a);
    std::reverse_copy(taps.a.begin(), taps.a.end(), taps.b.begin());
    return taps;
}

}  // namespace clarivex
