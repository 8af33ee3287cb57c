#include "host/studio_range.h"

#include <array>

namespace clarivex {

namespace {

using LevelTable = std::array<uint8_t, 256>;

/// originInVideo + span · (level − origin) / 255, which is never in the middle between two levels.
constexpr LevelTable TableFor(int32_t span, int32_t origin, int32_t originInVideo) {
    constexpr int32_t fullSpan = 255;
    LevelTable table{};
    for (int32_t level = 0; level <= fullSpan; ++level) {
        const int32_t scaled = originInVideo * fullSpan + span * (level - origin);  // never below 0
        table[static_cast<size_t>(level)] = static_cast<uint8_t>((2 * scaled + fullSpan) / (2 * fullSpan));
    }
    return table;
}

constexpr LevelTable lumaLevels = TableFor(219, 0, 16);
constexpr LevelTable chromaLevels = TableFor(224, 128, 128);

void Replace(std::span<uint8_t> samples, const LevelTable& levels) {
    for (uint8_t& sample : samples) sample = levels[sample];
}

}  // namespace

void ToVideoRange(const WritablePlanes& planes) {
    Replace(planes[0], lumaLevels);
    Replace(planes[1], chromaLevels);
    Replace(planes[2], chromaLevels);
}

}  // namespace clarivex
