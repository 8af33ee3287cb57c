// Measures the processor against the performance counter and scores it for a picture size.
#include "pipeline/cpu_speed.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

#include "platform/tsc.h"
#include "platform/win32.h"

namespace clarivex {
namespace {

int64_t ReadPerformanceCounter() {
    LARGE_INTEGER count{};
    QueryPerformanceCounter(&count);
    return count.QuadPart;
}

int64_t ReadPerformanceFrequency() {
    LARGE_INTEGER countsPerSecond{};
    QueryPerformanceFrequency(&countsPerSecond);
    return countsPerSecond.QuadPart;
}

void SleepFor(uint32_t milliseconds) { Sleep(milliseconds); }

constinit SpeedSources sources = {.timeStamp = ReadTimeStamp,
                                  .performanceCounter = ReadPerformanceCounter,
                                  .performanceFrequency = ReadPerformanceFrequency,
                                  .sleep = SleepFor};
constinit std::atomic<float> knownGHz = 0.0F;

/// Counts of both clocks across a sleep.
struct Interval {
    int64_t stamps = 0;
    int64_t counts = 0;
};

Interval TimeSleep(uint32_t milliseconds) {
    const int64_t countBefore = sources.performanceCounter();
    const uint64_t stampBefore = sources.timeStamp();
    sources.sleep(milliseconds);
    const uint64_t stampAfter = sources.timeStamp();
    const int64_t countAfter = sources.performanceCounter();
    return {static_cast<int64_t>(stampAfter - stampBefore), countAfter - countBefore};
}

/// Nearest whole number; 0 for what no clock rate can be.
int64_t RoundHertz(double hertz) {
    constexpr double limit = 9.0e18;
    return std::abs(hertz) < limit ? static_cast<int64_t>(std::nearbyint(hertz)) : 0;
}

int64_t MeasureRound(uint32_t milliseconds) {
    const HANDLE thread = GetCurrentThread();
    const int priority = GetThreadPriority(thread);
    const BOOL raised = SetThreadPriority(thread, THREAD_PRIORITY_TIME_CRITICAL);
    const Interval interval = TimeSleep(milliseconds);
    // A BOOL as a priority: just above normal, or normal where none was raised. Kept so that the host's threads meet the
    // same measurement between releases.
    SetThreadPriority(thread, raised);
    const double ratio = static_cast<double>(interval.stamps) / static_cast<double>(interval.counts);
    const int64_t hertz = RoundHertz(static_cast<double>(sources.performanceFrequency()) * ratio);
    SetThreadPriority(thread, priority);
    return hertz;
}

}  // namespace

SpeedSources SetSpeedSources(const SpeedSources& wanted) {
    knownGHz = 0.0F;
    return std::exchange(sources, wanted);
}

float MeasureCpuSpeed() {
    if (const float known = knownGHz; known > 0.0F) return known;
    int64_t highest = MeasureRound(100);
    highest = std::max(highest, MeasureRound(50));
    highest = std::max(highest, MeasureRound(50));
    const float measured = highest > 0 ? static_cast<float>(static_cast<double>(highest) / 1e9) : 0.0F;
    const float speed = measured > 0.0F ? measured : 1.0F;
    knownGHz = speed;
    return speed;
}

double SpeedScore(float speedGHz, int64_t area) {
    // Pixels that a clock rate of 1 GHz is good for are this many times the four factors. Their product is never formed:
    // each of them rounds, and streams stay enlarged or not as they were between releases.
    constexpr double areaUnit = 100000.0;
    return static_cast<double>(speedGHz) / (static_cast<double>(area) / areaUnit) * 1.64 * 0.92 * 1.024 * 1.0563;
}

int64_t LargestAutomaticArea(float speedGHz) {
    auto area = static_cast<int64_t>(SpeedScore(speedGHz, 1)) + 1;  // rounding may move the end by one
    while (area > 0 && SpeedScore(speedGHz, area) < 1.0) --area;
    return area;
}

}  // namespace clarivex
