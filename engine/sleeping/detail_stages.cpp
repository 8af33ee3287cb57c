// The simple edge limiter and the small-signal booster, sample by sample.
#include "engine/sleeping/detail_stages.h"

#include <algorithm>

#include "algorithms/detail_arithmetic.h"
#include "algorithms/sleeping/row_groups.h"

namespace clarivex {
namespace {

constexpr int32_t limiterGroup = 4;
constexpr int32_t boosterGroup = 8;
constexpr int32_t boosterReach = 3;

uint8_t LimitSample(const uint8_t* s, const SimpleLimits& limits) {
    const int32_t sample = s[0];
    const auto towards = [&](int32_t neighbour) -> int32_t {
        return SaturateSample(sample + (Wrap16((neighbour - sample) * limits.neighbourWeight) >> 6));
    };
    const int16_t first = Core(Wrap16(limits.gain * NarrowMeasure(s[-1], s[0], s[1])), limits.deadZone);
    const int16_t second = Core(first, limits.deadZone);
    const int32_t sharpened = SaturateSample(sample + (Wrap16(first + second + 16) >> 5));
    const auto [low, high] = std::minmax({towards(s[-1]), sample, towards(s[1])});
    return static_cast<uint8_t>(std::clamp(sharpened, low, high));
}

/// The part of a sample's detail, measured two samples apart, that stays within the dead zone.
int32_t SmallDetail(const uint8_t* s, const BoosterGains& gains) {
    const int16_t detail = Wrap16(gains.gain * NarrowMeasure(s[-2], s[0], s[2]));
    return Wrap16(detail - Core(detail, gains.deadZone));
}

}  // namespace

void LimitEdgesSimple(const Plane& strip, const SimpleLimits& limits) {
    const int32_t groups = (strip.width + limiterGroup - 1) / limiterGroup;
    const int32_t end = groups * limiterGroup;
    for (int32_t y = 0; y < strip.height; ++y) {
        uint8_t* row = strip.Row(y);
        if (end > strip.width) row[strip.width] = row[strip.width - 1];
        const uint8_t* behind = end > strip.width && end < strip.stride ? row + end : row + end - 1;
        FilterInGroups<limiterGroup, 1, 1>(row, groups, {row[0]}, behind,
                                           [&](const uint8_t* samples, uint8_t* group, int32_t) {
                                               for (int32_t i = 0; i < limiterGroup; ++i)
                                                   group[i] = LimitSample(samples + i, limits);
                                           });
    }
}

BoosterGains DeriveBoosterGains(int32_t detailBoostA, int32_t detailBoostB) {
    constexpr int64_t maxProduct = 0x3FFF;
    const int64_t product = std::min(int64_t{detailBoostA} * detailBoostB, maxProduct);
    return {Wrap16(detailBoostB >> 2), Wrap16(product >> 2)};
}

void BoostSmallSignals(const Plane& strip, const BoosterGains& gains) {
    constexpr int32_t untouched = 4;  // samples at the row's start whose detail counts as 0
    const int32_t groups = (strip.width - boosterGroup) >> 3;
    if (groups <= 0) return;
    for (int32_t y = 0; y < strip.height; ++y) {
        uint8_t* row = strip.Row(y);
        const auto boost = [&](const uint8_t* samples, uint8_t* group, int32_t column) {
            for (int32_t i = 0; i < boosterGroup; ++i) {
                int32_t sum = 32;
                for (int32_t k = i - 1; k <= i + 1; ++k)
                    sum += column + k < untouched ? 0 : SmallDetail(samples + k, gains);
                group[i] = SaturateSample(samples[i] + (Wrap16(sum) >> 6));
            }
        };
        FilterInGroups<boosterGroup, boosterReach, boosterReach>(row, groups, Repeat<boosterReach>(row[0]),
                                                                 row + groups * boosterGroup, boost);
    }
}

}  // namespace clarivex
