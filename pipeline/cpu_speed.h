// How fast the processor is, and whether that is enough to enlarge a picture in time.
#pragma once

#include <cstdint>

namespace clarivex {

/// What a measurement reads and how it waits; tests bring their own.
struct SpeedSources {
    uint64_t (*timeStamp)() = nullptr;            ///< the processor's counter
    int64_t (*performanceCounter)() = nullptr;    ///< a clock
    int64_t (*performanceFrequency)() = nullptr;  ///< its counts a second
    void (*sleep)(uint32_t milliseconds) = nullptr;
};

/// Gives the process other clocks and forgets what it measured with the old ones. Not while a thread measures.
///
/// result  the clocks until now; the system's own at first
SpeedSources SetSpeedSources(const SpeedSources& wanted);

/// The clock rate of this machine in GHz, measured once in a process: always above 0, and 1.0 when nothing usable comes
/// out. The first call takes about 200 ms; two threads that ask at first measure both, with the same result.
float MeasureCpuSpeed();

/// Score of a machine for pictures of `area` pixels, at least 1; from 1.0 on the stream is enlarged.
double SpeedScore(float speedGHz, int64_t area);

/// The largest picture, in pixels, that a machine of this speed enlarges in automatic mode; 0 when none.
int64_t LargestAutomaticArea(float speedGHz);

}  // namespace clarivex
