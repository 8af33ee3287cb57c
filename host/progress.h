// What a person sees of a run: a progress line on a terminal, a summary and the times at the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "host/picture.h"

namespace clarivex {

using Clock = std::chrono::steady_clock;

/// "123 of 300 frames, 45.6 frames/s, 0:04 left"; without `total` neither "of" nor the time left. seconds at least 0.
///
/// unit  what is counted, in the singular
std::string ProgressText(uint64_t count, std::optional<uint64_t> total, double seconds, const char* unit = "frame");

/// "300 frames, 640x480 to 960x720, 45.6 frames/s".
std::string SummaryText(uint64_t frames, PictureSize from, PictureSize to, double seconds);

/// Total, mean, minimum and median of the times, in milliseconds. Any number of frames, none included.
std::string TimingText(std::span<const Clock::duration> times);

/// The progress line on standard error, written over itself a few times a second and wiped at the end.
class Progress {
public:
    /// visible     off makes every call do nothing that can be seen
    /// wholeCount  what the count will come to, where that is known
    /// counted     in the singular
    Progress(bool visible, std::optional<uint64_t> wholeCount, const char* counted = "frame");
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Counts one more.
    void OneDone();

    /// Takes the line off the terminal, so that another can take its place.
    void Wipe();

    uint64_t Count() const { return count; }
    double Seconds() const;  ///< since construction

private:
    void Show(const std::string& text);

    bool shown;
    std::optional<uint64_t> total;
    const char* unit;
    uint64_t count = 0;
    size_t lettersShown = 0;
    Clock::time_point start = Clock::now();
    Clock::time_point nextShow = start;
};

}  // namespace clarivex
