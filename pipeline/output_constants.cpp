#include "pipeline/output_constants.h"

#include <cmath>

namespace clarivex {
namespace {

int16_t LowWord(double product) {
    constexpr double limit = 2147483648.0;
    if (!(product > -limit && product < limit)) return 0;
    return static_cast<int16_t>(std::llrint(product));
}

bool IsNeutral(const LightingCorrection& params) {
    return params.cubic == 0 && params.square == 0 && params.lumaGain == 1 && params.lumaOffset == 0 &&
           params.chromaGainU == 1 && params.chromaOffsetU == 0 && params.chromaGainV == 1 && params.chromaOffsetV == 0;
}

}  // namespace

OutputConstants MakeOutputConstants(const LightingCorrection& params) {
    constexpr double cubicScale = 65536.0 * 256 * 2 * 2 * 16 / 4;
    constexpr double squareScale = 65536.0 * 2 * 2 * 16 / 4;
    constexpr double gainScale = 256.0 * 2 * 16;
    constexpr double offsetScale = 16;
    return {.c3 = LowWord(params.cubic * cubicScale),
            .c2 = LowWord(params.square * squareScale),
            .c1 = LowWord(params.lumaGain * gainScale),
            .c0 = LowWord(params.lumaOffset * offsetScale),
            .gU = LowWord(params.chromaGainU * gainScale),
            .oU = LowWord(params.chromaOffsetU * offsetScale),
            .gV = LowWord(params.chromaGainV * gainScale),
            .oV = LowWord(params.chromaOffsetV * offsetScale)};
}

bool PackedNeedsWork(const LightingCorrection& params, float noiseLevel) {
    constexpr double invisibleNoise = 0.0001;
    const bool constantsNeutral = MakeOutputConstants(params) == OutputConstants{};
    return PlanarNeedsWork(params, noiseLevel) && !(constantsNeutral && noiseLevel < invisibleNoise);
}

bool PlanarNeedsWork(const LightingCorrection& params, float noiseLevel) {
    return !IsNeutral(params) || noiseLevel != 0;
}

}  // namespace clarivex
