// What a person sees of a run: a progress line on a terminal, a summary and the times at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "host/report.h"

namespace clarivex {

using Clock = std::chrono::steady_clock;

/// How far a run has come.
struct Advance {
    uint64_t count = 0;             ///< frames, or what else is counted
    std::optional<uint64_t> total;  ///< what the count will come to
    double seconds = 0.0;           ///< that have passed; at least 0
    double videoSeconds = 0.0;      ///< that the frames so far play; 0 where that is not known
    std::optional<double> videoTotal;
};

/// "123 of 300 frames, 41 %, 45.6 frames/s, 1.8 x real time, 0:04 left". What is not known is left out; percent and time
/// left go by the video's length where the whole count is not known.
///
/// unit  what is counted, in the singular
std::string ProgressText(const Advance& advance, const char* unit = "frame");

/// Total, mean, minimum and median of the times, in milliseconds. Any number of frames, none included.
std::string TimingText(std::span<const Clock::duration> times);

/// The progress line of a run, brought up to date a few times a second. One thread counts.
class Progress {
public:
    /// report      must outlive the progress
    /// wholeCount  what the count will come to, where that is known
    /// wholeTime   seconds that the video plays, where that is known
    /// counted     in the singular
    Progress(Report& report, std::optional<uint64_t> wholeCount, std::optional<double> wholeTime = {},
             const char* counted = "frame");

    /// Counts one more, up to which the video plays for `videoSeconds`.
    void OneDone(double videoSeconds = 0.0);

    uint64_t Count() const { return advance.count; }
    double VideoSeconds() const { return advance.videoSeconds; }
    double Seconds() const;  ///< since construction

private:
    Report& shown;
    Advance advance;
    const char* unit;
    Clock::time_point start = Clock::now();
    Clock::time_point nextShow = start;
};

}  // namespace clarivex
