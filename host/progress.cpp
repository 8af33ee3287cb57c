// Progress, summary and timing lines.
#include "host/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "host/words.h"

namespace clarivex {

namespace {

constexpr Clock::duration showEvery = std::chrono::milliseconds(200);

std::string CountASecond(uint64_t count, double seconds, const char* unit) {
    return Fixed(seconds > 0.0 ? static_cast<double>(count) / seconds : 0.0, 1) + Plural(unit) + "/s";
}

/// Hours only where there are any: 0:04, 1:02:03.
std::string ClockTime(double seconds) {
    const auto whole = static_cast<uint64_t>(std::llround(std::clamp(seconds, 0.0, 3.6e8)));
    char text[64];
    if (whole >= 3600)
        std::snprintf(text, sizeof text, "%u:%02u:%02u", static_cast<unsigned>(whole / 3600),
                      static_cast<unsigned>(whole / 60 % 60), static_cast<unsigned>(whole % 60));
    else
        std::snprintf(text, sizeof text, "%u:%02u", static_cast<unsigned>(whole / 60),
                      static_cast<unsigned>(whole % 60));
    return text;
}

/// 0 … 1, and 0 where the whole is not known.
double PartDone(const Advance& advance) {
    if (advance.total && *advance.total >= advance.count)
        return static_cast<double>(advance.count) / static_cast<double>(*advance.total);
    return advance.videoTotal && *advance.videoTotal > 0.0
               ? std::clamp(advance.videoSeconds / *advance.videoTotal, 0.0, 1.0)
               : 0.0;
}

double Milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

}  // namespace

std::string ProgressText(const Advance& advance, const char* unit) {
    const bool counts = advance.total && *advance.total >= advance.count;
    std::string text = counts ? std::to_string(advance.count) + " of " + CountText(*advance.total, unit)
                              : CountText(advance.count, unit);
    const double done = PartDone(advance);
    if (done > 0.0) text += ", " + Fixed(100.0 * done, 0) + " %";
    text += ", " + CountASecond(advance.count, advance.seconds, unit);
    if (advance.videoSeconds > 0.0 && advance.seconds > 0.0)
        text += ", " + Fixed(advance.videoSeconds / advance.seconds, 1) + " x real time";
    if (done > 0.0) text += ", " + ClockTime(advance.seconds / done * (1.0 - done)) + " left";
    return text;
}

std::string TimingText(std::span<const Clock::duration> times) {
    if (times.empty()) return "timing: 0 frames in ProcessOutput";
    std::vector<Clock::duration> sorted(times.begin(), times.end());
    std::sort(sorted.begin(), sorted.end());
    double total = 0.0;
    for (const Clock::duration time : sorted) total += Milliseconds(time);
    return "timing: " + CountText(sorted.size(), "frame") + " in ProcessOutput, total " + Fixed(total, 3) +
           " ms, mean " + Fixed(total / static_cast<double>(sorted.size()), 4) + " ms, minimum " +
           Fixed(Milliseconds(sorted.front()), 4) + " ms, median " + Fixed(Milliseconds(sorted[sorted.size() / 2]), 4) +
           " ms";
}

Progress::Progress(Report& report, std::optional<uint64_t> wholeCount, std::optional<double> wholeTime,
                   const char* counted)
    : shown(report), advance{.total = wholeCount, .videoTotal = wholeTime}, unit(counted) {}

void Progress::OneDone(double videoSeconds) {
    ++advance.count;
    advance.videoSeconds = videoSeconds;
    if (!shown.ShowsProgress() || Clock::now() < nextShow) return;
    nextShow = Clock::now() + showEvery;
    advance.seconds = Seconds();
    shown.ShowProgress(ProgressText(advance, unit));
}

double Progress::Seconds() const { return std::chrono::duration<double>(Clock::now() - start).count(); }

}  // namespace clarivex
