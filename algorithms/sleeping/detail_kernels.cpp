// Prepares the gains of the detail kernels and decides the gates of a group.
#include "algorithms/sleeping/detail_kernels.h"

#include <cstdlib>

namespace clarivex {
namespace {

constexpr int32_t maxKnee = 0x3FFF;
constexpr int32_t maxGain = 0x7FFF;

NarrowGains Narrow(int32_t base, int32_t extra, int32_t knee) { return {Wrap16(base), Wrap16(extra), Wrap16(knee)}; }

/// Where the narrow gate opens: a share, in 4096ths, of the detail at which the knee lies; 15 at most.
int16_t NarrowGate(int64_t knee, int32_t extra, int32_t share) {
    if (extra == 0) return 0;
    const int64_t kneeDetail = (knee << 8) / extra;
    return Wrap16(std::min<int64_t>((share * kneeDetail) >> 12, 15));
}

/// The largest magnitude of the group, a negative value counting one less.
int16_t LargestMagnitude(const int16_t* measures) {
    int16_t largest = 0;
    for (int32_t i = 0; i < gateGroup; ++i)
        largest = std::max(largest, static_cast<int16_t>(measures[i] < 0 ? -measures[i] - 1 : measures[i]));
    return largest;
}

/// The knee may take detail away but never turn it round. A base of 0 counts as positive.
int16_t ClearIfReversed(int16_t detail, int16_t base) { return (detail < 0) == (base < 0) ? detail : int16_t{0}; }

int16_t GatedWide(int16_t measure, bool open, const GatedGains& gains) {
    const int16_t scaled = Wrap16(measure << 4);
    const int16_t base = Wrap16(MulHigh(scaled, gains.wideBase) << 2);
    const int16_t extra = open ? Wrap16(MulHigh(scaled, gains.wideExtra) << 2) : int16_t{0};
    return ClearIfReversed(Saturate16(Core(extra, gains.wideKnee) + base), base);
}

int16_t GatedNarrow(int16_t measure, bool open, const NarrowGains& gains) {
    const int16_t base = Wrap16(gains.base * measure);
    const int16_t extra = open ? Wrap16(gains.extra * measure) : int16_t{0};
    return ClearIfReversed(Wrap16(Core(extra, gains.knee) + base), base);
}

}  // namespace

NarrowGains MakeNarrowGains(const SharpenCoefficients& c) {
    return Narrow(c.narrowBase, c.narrowExtra, std::min(c.narrowKnee, maxKnee));
}

GatedGains MakeGatedRowGains(const SharpenCoefficients& c) {
    GatedGains gains;
    gains.narrow = Narrow(c.narrowBase, c.narrowExtra, c.narrowKnee);
    gains.wideBase = Wrap16(c.wideBase >> 2);
    gains.wideExtra = Wrap16(c.wideExtra >> 2);
    gains.wideKnee = Wrap16(c.wideKnee >> 12);
    gains.narrowGate = NarrowGate(c.narrowKnee, c.narrowExtra, 86);
    gains.wideGate = static_cast<int16_t>(18 * gains.narrowGate / 16);
    return gains;
}

GatedGains MakeGatedColumnGains(const SharpenCoefficients& c) {
    GatedGains gains;
    gains.narrow = MakeNarrowGains(c);
    gains.wideBase = Wrap16(int64_t{c.wideBase} * 64);
    gains.wideExtra = Wrap16(int64_t{c.wideExtra} * 64);
    gains.wideKnee = Wrap16(c.wideKnee >> 4);
    gains.narrowGate = NarrowGate(gains.narrow.knee, c.narrowExtra, 70);
    gains.wideGate = static_cast<int16_t>(17 * gains.narrowGate / 16);
    return gains;
}

KneeGains MakeKneeGains(const SharpenCoefficients& c) {
    int32_t wideBase = c.wideBase;
    int64_t wideHalfExtra = c.wideExtra >> 1;
    int32_t wideKnee = std::min(c.wideKnee >> 13, maxKnee);
    if (wideBase > maxGain) {
        wideKnee = wideKnee * maxGain / wideBase;
        wideHalfExtra += wideBase - maxGain;
        wideBase = maxGain;
    }
    KneeGains gains;
    gains.narrow =
        Narrow(std::min(c.narrowBase, maxGain), std::min(c.narrowExtra, maxGain), std::min(c.narrowKnee, maxKnee));
    gains.wideBase = Wrap16(wideBase);
    gains.wideHalfExtra = Wrap16(std::max<int64_t>(wideHalfExtra, -0x8000));
    gains.wideKnee = Wrap16(wideKnee);
    return gains;
}

void GatedDetail(const uint8_t* samples, const int16_t* narrow, const int16_t* wide, const GatedGains& gains,
                 const uint8_t* dither, uint8_t* out) {
    const bool wideOpen = LargestMagnitude(wide) > gains.wideGate;
    const bool narrowOpen = LargestMagnitude(narrow) > gains.narrowGate;
    for (int32_t i = 0; i < gateGroup; ++i) {
        const int32_t detail = GatedWide(wide[i], wideOpen, gains) + GatedNarrow(narrow[i], narrowOpen, gains.narrow);
        out[i] = SaturateSample(samples[i] + (Wrap16(detail + dither[i]) >> 4));
    }
}

}  // namespace clarivex
