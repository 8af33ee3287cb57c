// Time in ticks of 100 nanoseconds, from the cheapest counter that the machine turns out to have.
#pragma once

#include <atomic>
#include <cstdint>

#include "runtime/fast_lock.h"
#include "runtime/ticks.h"

namespace clarivex {

/// Where a clock reads from; tests bring their own.
struct ClockSources {
    int64_t (*performanceFrequency)() = nullptr;  ///< counts a second; 0 when there is no such counter
    int64_t (*performanceCounter)() = nullptr;    ///< 0 when reading fails
    uint32_t (*milliseconds)() = nullptr;         ///< wraps after 2³² ms
    uint64_t (*timeStamp)() = nullptr;            ///< the processor's counter; may stand still
};

ClockSources SystemClockSources();

/// A clock that starts on the performance counter, or on the millisecond timer where there is none, measures the
/// processor's time-stamp counter against it, and reads only that one after five samples a second apart.
///
/// May be read from any thread. The zero point is the counter's own; readings never fall from one call to the next
/// on a thread.
class HiResClock {
public:
    explicit HiResClock(const ClockSources& from);

    /// Ticks of 100 ns.
    int64_t Now();

private:
    struct Sample {
        int64_t ticks = 0;
        uint64_t stamp = 0;
    };

    int64_t ReadSlowSource();
    bool HasPerformanceCounter();
    int64_t ReadMilliseconds();
    void Calibrate(int64_t ticks);

    static constexpr int64_t notYetRead = 0;
    static constexpr int64_t unusable = -1;
    static constexpr int32_t samplesNeeded = 5;

    const ClockSources sources;
    std::atomic<int64_t> frequency = notYetRead;
    std::atomic<double> ticksPerCount = 0.0;

    FastLock wrapLock;
    std::atomic<uint32_t> halfWraps = 0;  // how often the top bit of the millisecond timer has changed

    FastLock calibrationLock;
    std::atomic<int32_t> sampleCount = 0;
    std::atomic<int64_t> lastSampleTicks = 0;
    Sample firstSample;
    double ticksPerStamp = 0.0;
    Sample base;
};

/// The clock of the process.
HiResClock& ProcessClock();

}  // namespace clarivex
