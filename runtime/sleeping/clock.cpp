#include "runtime/sleeping/clock.h"

#include "platform/tsc.h"
#include "platform/win32.h"

namespace clarivex {
namespace {

int64_t ReadFrequency() {
    LARGE_INTEGER value{};
    return QueryPerformanceFrequency(&value) ? value.QuadPart : 0;
}

int64_t ReadCounter() {
    LARGE_INTEGER value{};
    return QueryPerformanceCounter(&value) ? value.QuadPart : 0;
}

uint32_t ReadTimer() { return timeGetTime(); }

}  // namespace

ClockSources SystemClockSources() {
    return {.performanceFrequency = ReadFrequency,
            .performanceCounter = ReadCounter,
            .milliseconds = ReadTimer,
            .timeStamp = ReadTimeStamp};
}

HiResClock::HiResClock(const ClockSources& from) : sources(from) {}

int64_t HiResClock::Now() {
    if (sampleCount.load(std::memory_order_acquire) >= samplesNeeded) {
        const auto elapsed = static_cast<double>(static_cast<int64_t>(sources.timeStamp() - base.stamp));
        return base.ticks + static_cast<int64_t>(elapsed * ticksPerStamp);
    }
    const int64_t ticks = ReadSlowSource();
    if (ticks - lastSampleTicks.load() >= ticksPerSecond) Calibrate(ticks);
    return ticks;
}

int64_t HiResClock::ReadSlowSource() {
    if (HasPerformanceCounter()) {
        const int64_t count = sources.performanceCounter();
        if (count != 0) return static_cast<int64_t>(static_cast<double>(count) * ticksPerCount.load());
        frequency.store(unusable);
    }
    return ReadMilliseconds();
}

bool HiResClock::HasPerformanceCounter() {
    if (frequency.load() == notYetRead) {
        const int64_t perSecond = sources.performanceFrequency();
        if (perSecond > 0) ticksPerCount.store(static_cast<double>(ticksPerSecond) / static_cast<double>(perSecond));
        frequency.store(perSecond > 0 ? perSecond : unusable);
    }
    return frequency.load() != unusable;
}

int64_t HiResClock::ReadMilliseconds() {
    constexpr int64_t ticksPerMillisecond = 10'000;
    const auto topBit = [](uint32_t value) { return value >> 31; };
    uint32_t changes = halfWraps.load();
    uint32_t time = sources.milliseconds();
    if (topBit(time) != (changes & 1)) {
        const FastLockGuard guard(wrapLock);
        time = sources.milliseconds();
        changes = halfWraps.load();
        if (topBit(time) != (changes & 1)) halfWraps.store(++changes);
    }
    const uint64_t milliseconds = (static_cast<uint64_t>(changes >> 1) << 32) | time;
    return static_cast<int64_t>(milliseconds) * ticksPerMillisecond;
}

void HiResClock::Calibrate(int64_t ticks) {
    const FastLockGuard guard(calibrationLock);
    const int32_t taken = sampleCount.load();
    const Sample sample{ticks, sources.timeStamp()};
    const bool first = taken == 0;
    if (taken >= samplesNeeded || (!first && ticks - lastSampleTicks.load() < ticksPerSecond))
        return;                                        // another thread was here first
    if (!first && sample.stamp <= base.stamp) return;  // a counter that stands still or runs backwards measures nothing
    if (first) {
        firstSample = sample;
    } else {
        ticksPerStamp = static_cast<double>(sample.ticks - firstSample.ticks) /
                        static_cast<double>(sample.stamp - firstSample.stamp);
    }
    base = sample;
    lastSampleTicks.store(ticks);
    sampleCount.store(taken + 1, std::memory_order_release);
}

HiResClock& ProcessClock() {
    static HiResClock clock(SystemClockSources());
    return clock;
}

}  // namespace clarivex
