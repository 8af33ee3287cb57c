// Progress, summary and timing lines.
#include "host/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace clarivex {

namespace {

constexpr Clock::duration showEvery = std::chrono::milliseconds(200);

std::string Fixed(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string Plural(const char* unit) { return std::string(" ") + unit + "s"; }

std::string CountASecond(uint64_t count, double seconds, const char* unit) {
    return Fixed(seconds > 0.0 ? static_cast<double>(count) / seconds : 0.0, 1) + Plural(unit) + "/s";
}

std::string CountText(uint64_t count, const char* unit) {
    return std::to_string(count) + (count == 1 ? std::string(" ") + unit : Plural(unit));
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

std::string SizeText(PictureSize size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

double Milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

}  // namespace

std::string ProgressText(uint64_t count, std::optional<uint64_t> total, double seconds, const char* unit) {
    if (!total || *total < count) return CountText(count, unit) + ", " + CountASecond(count, seconds, unit);
    std::string text =
        std::to_string(count) + " of " + CountText(*total, unit) + ", " + CountASecond(count, seconds, unit);
    if (count > 0)
        text += ", " + ClockTime(seconds / static_cast<double>(count) * static_cast<double>(*total - count)) + " left";
    return text;
}

std::string SummaryText(uint64_t frames, PictureSize from, PictureSize to, double seconds) {
    return CountText(frames, "frame") + ", " + SizeText(from) + " to " + SizeText(to) + ", " +
           CountASecond(frames, seconds, "frame");
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

Progress::Progress(bool visible, std::optional<uint64_t> wholeCount, const char* counted)
    : shown(visible), total(wholeCount), unit(counted) {}

Progress::~Progress() { Wipe(); }

void Progress::Wipe() {
    if (lettersShown > 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(lettersShown), "");
    lettersShown = 0;
}

void Progress::OneDone() {
    ++count;
    if (!shown || Clock::now() < nextShow) return;
    nextShow = Clock::now() + showEvery;
    Show(ProgressText(count, total, Seconds(), unit));
}

double Progress::Seconds() const { return std::chrono::duration<double>(Clock::now() - start).count(); }

void Progress::Show(const std::string& text) {
    lettersShown = std::max(lettersShown, text.size());  // spaces wipe what a longer line left behind
    std::fprintf(stderr, "\r%-*s", static_cast<int>(lettersShown), text.c_str());
    std::fflush(stderr);
}

}  // namespace clarivex
