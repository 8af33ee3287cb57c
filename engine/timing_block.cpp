#include "engine/timing_block.h"

#include <algorithm>

namespace clarivex {

void TimingBlock::Note(TimingClass kind, int32_t newWidth, int32_t newHeight, int64_t cycles) {
    constexpr int32_t smallestSide = 16;
    const FastLockGuard guard(lock);
    if (newWidth >= smallestSide && newHeight >= smallestSide && kind != TimingClass::none && cycles > 0) {
        if (newWidth != width || newHeight != height)
            for (TimingFigures& stale : figures) stale.sampleCount = stale.meanCount = 0;
        AddSample(figures[static_cast<size_t>(kind)], cycles);
    }
    width = newWidth;
    height = newHeight;
}

void TimingBlock::AddSample(TimingFigures& kind, int64_t cycles) {
    kind.samples[static_cast<size_t>(kind.sampleCount++)] = cycles;
    if (kind.sampleCount < static_cast<int32_t>(kind.samples.size())) return;
    kind.sampleCount = 0;
    const int64_t mean = (kind.samples[0] + kind.samples[1] + kind.samples[2]) / 3;
    kind.bestMean = kind.meanCount == 0 ? mean : std::min(kind.bestMean, mean);
    ++kind.meanCount;
}

}  // namespace clarivex
