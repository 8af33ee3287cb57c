// What kernels that sharpen by differences are made of, in 16-bit numbers that wrap.
#pragma once

#include <algorithm>
#include <cstdint>

namespace clarivex {

/// Rows, or columns, of a strip: what goes through all stages while it is in the cache.
constexpr int32_t stripSize = 16;

inline int16_t Wrap16(int64_t value) { return static_cast<int16_t>(static_cast<uint16_t>(value)); }
inline int16_t Saturate16(int32_t value) { return static_cast<int16_t>(std::clamp(value, -32768, 32767)); }
inline uint8_t SaturateSample(int64_t value) { return static_cast<uint8_t>(std::clamp<int64_t>(value, 0, 255)); }

/// Upper 16 bits of the signed 32-bit product.
inline int16_t MulHigh(int16_t a, int16_t b) { return static_cast<int16_t>((a * b) >> 16); }

/// Dead zone: x moved by `deadZone` towards 0, and 0 within it. Wraps where x + deadZone leaves 16 bits.
inline int16_t Core(int16_t x, int16_t deadZone) {
    const int16_t raised = Wrap16(x + deadZone);
    const int32_t excess = raised > 0 ? static_cast<uint16_t>(2 * deadZone) : 0;
    return raised > 0 ? Wrap16(std::max(raised - excess, 0)) : raised;
}

/// Second difference of a sample and its two neighbours, ±510.
inline int16_t NarrowMeasure(int32_t before, int32_t sample, int32_t after) {
    return static_cast<int16_t>(2 * sample - before - after);
}

/// Gains of NarrowDetail.
struct NarrowGains {
    int16_t base = 0;
    int16_t extra = 0;
    int16_t knee = 0;  ///< dead zone of the product with extra
};

/// dither  added before the final shift by 4, below 16.
inline uint8_t NarrowDetail(uint8_t sample, int16_t narrow, const NarrowGains& gains, int32_t dither) {
    const int32_t detail = Core(Wrap16(gains.extra * narrow), gains.knee) + Wrap16(gains.base * narrow);
    return SaturateSample(sample + (Wrap16(detail + dither) >> 4));
}

}  // namespace clarivex
