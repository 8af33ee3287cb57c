// How fast the processor is, and whether that is enough to enlarge a picture in time.
#pragma once

#include <atomic>
#include <cstdint>

namespace clarivex {

/// What a measurement reads and how it waits; tests bring their own.
struct SpeedSources {
    uint64_t (*timeStamp)() = nullptr;            ///< the processor's counter
    int64_t (*performanceCounter)() = nullptr;    ///< a clock
    int64_t (*performanceFrequency)() = nullptr;  ///< its counts a second
    void (*sleep)(uint32_t milliseconds) = nullptr;
};

SpeedSources SystemSpeedSources();

/// Measures once and remembers. Two threads that ask at first measure both, with the same result.
class CpuSpeedMeter {
public:
    explicit CpuSpeedMeter(const SpeedSources& from) : sources(from) {}

    /// Clock rate in GHz, always above 0; 1.0 when nothing usable comes out. The first call takes about 200 ms.
    float Measure();

private:
    const SpeedSources sources;
    std::atomic<float> cpuSpeedGHz = 0.0F;
};

/// The clock rate of this machine in GHz, measured once in a process.
float MeasureCpuSpeed();

/// Score of a machine for pictures of `area` pixels, at least 1; from 1.0 on the stream is enlarged.
double SpeedScore(float speedGHz, int64_t area);

/// The largest picture, in pixels, that a machine of this speed enlarges in automatic mode; 0 when none.
int64_t LargestAutomaticArea(float speedGHz);

}  // namespace clarivex
