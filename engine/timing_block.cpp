#include "engine/timing_block.h"

#include <algorithm>

namespace clarivex {

void TimingBlock::Note(TimingClass kind, const FrameSize& newSize, int64_t cycles) {
    constexpr int32_t smallestSide = 16;
    const FastLockGuard guard(lock);
    const bool largeEnough = newSize.width >= smallestSide && newSize.height >= smallestSide;
    if (largeEnough && kind != TimingClass::none && cycles > 0) {
        if (newSize != size)
            for (TimingFigures& stale : figures) stale.sampleCount = stale.meanCount = 0;
        AddSample(figures[static_cast<size_t>(kind)], cycles);
    }
    size = newSize;
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
