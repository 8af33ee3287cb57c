// The detail kernels for one sample or one group of four, in 16-bit numbers that wrap. The passes over whole planes and
// the stages inside the scaler's strips all come here.
#pragma once

#include <algorithm>
#include <cstdint>

#include "algorithms/detail_arithmetic.h"
#include "algorithms/sharpen_params.h"

namespace clarivex {

/// Samples that share one gate decision in GatedDetail.
constexpr int32_t gateGroup = 4;

/// Samples on either side that the wide measure reads.
constexpr int32_t wideReach = 3;

/// Gains of GatedDetail. The wide ones are multipliers of 16·W kept to their upper half and then shifted up by 2.
struct GatedGains {
    NarrowGains narrow;
    int16_t wideBase = 0;
    int16_t wideExtra = 0;
    int16_t wideKnee = 0;
    int16_t narrowGate = 0;  ///< the narrow measure has to exceed this in one of the four samples
    int16_t wideGate = 0;
};

/// Gains of KneeDetail: the extra wide gain comes in two steps, half of it above the knee, all above twice the knee.
struct KneeGains {
    NarrowGains narrow;
    int16_t wideBase = 0;
    int16_t wideHalfExtra = 0;
    int16_t wideKnee = 0;
};

NarrowGains MakeNarrowGains(const SharpenCoefficients& coefficients);

/// Gains for groups filtered along rows; coefficients derived with a wide scale of 256.
GatedGains MakeGatedRowGains(const SharpenCoefficients& coefficients);

/// Gains for groups filtered down columns; coefficients derived with a wide scale of 1.
GatedGains MakeGatedColumnGains(const SharpenCoefficients& coefficients);

/// Coefficients derived with a wide scale of 256. A wide base gain beyond 16 bits goes into the extra gain.
KneeGains MakeKneeGains(const SharpenCoefficients& coefficients);

/// The same dead zone in full width, where nothing wraps.
inline int64_t WideCore(int64_t x, int64_t deadZone) {
    const int64_t rest = std::max<int64_t>((x < 0 ? -x : x) - deadZone, 0);
    return x < 0 ? -rest : rest;
}

/// Taps −1, −2, 1, 4, 1, −2, −1 on the samples s0 … s6 around s3, ±1530.
inline int16_t WideMeasure(int32_t s0, int32_t s1, int32_t s2, int32_t s3, int32_t s4, int32_t s5, int32_t s6) {
    return static_cast<int16_t>(4 * s3 + s2 + s4 - 2 * (s1 + s5) - s0 - s6);
}

inline uint8_t KneeDetail(uint8_t sample, int16_t narrow, int16_t wide, const KneeGains& gains, int32_t dither) {
    const int16_t scaledWide = Wrap16(wide << 4);
    const int16_t firstStep = Core(MulHigh(scaledWide, gains.wideHalfExtra), gains.wideKnee);
    const int16_t bothSteps = Wrap16(firstStep + Core(firstStep, gains.wideKnee));
    const int16_t wideDetail = Saturate16(MulHigh(scaledWide, gains.wideBase) + bothSteps);
    const int32_t narrowDetail =
        Core(Wrap16(gains.narrow.extra * narrow), gains.narrow.knee) + Wrap16(gains.narrow.base * narrow);
    return SaturateSample(sample + (Wrap16(wideDetail + narrowDetail + dither) >> 4));
}

/// Four neighbouring samples, of which one that exceeds a gate opens the extra gain for all.
///
/// samples, out  four samples each.
/// dither        one value a sample, below 16.
void GatedDetail(const uint8_t* samples, const int16_t* narrow, const int16_t* wide, const GatedGains& gains,
                 const uint8_t* dither, uint8_t* out);

}  // namespace clarivex
