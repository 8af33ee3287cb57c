#include "gstreamer/player/status_line.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "platform/console.h"

namespace clarivex {

namespace {

/// Letters that fit into one line of the terminal.
size_t LineLetters() {
    winsize terminal{};
    const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &terminal) == 0 && terminal.ws_col > 1;
    return isKnown ? terminal.ws_col - 1U : 79U;
}

}  // namespace

StatusLine::StatusLine(bool quiet) : isQuiet(quiet), isShown(!quiet && IsTerminal(stderr)) {}

void StatusLine::Show(std::string text) {
    if (!isShown) return;
    const size_t room = LineLetters();
    text.resize(std::min(text.size(), room));
    lettersShown = std::min(std::max(lettersShown, text.size()), room);  // spaces wipe what a longer line left
    std::fprintf(stderr, "\r%-*s", static_cast<int>(lettersShown), text.c_str());
    std::fflush(stderr);
}

void StatusLine::Tell(const std::string& text) {
    if (isQuiet) return;
    Wipe();
    std::fprintf(stderr, "clarivex: %s\n", text.c_str());
}

void StatusLine::Wipe() {
    if (lettersShown > 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(lettersShown), "");
    std::fflush(stderr);
    lettersShown = 0;
}

std::string ClockTime(int64_t nanoseconds) {
    if (nanoseconds < 0) return "?";
    const int64_t seconds = nanoseconds / 1000000000;
    char text[64];
    const auto hours = static_cast<long long>(seconds / 3600);
    const int minutes = static_cast<int>(seconds / 60 % 60);
    const int rest = static_cast<int>(seconds % 60);
    if (hours > 0)
        std::snprintf(text, sizeof text, "%lld:%02d:%02d", hours, minutes, rest);
    else
        std::snprintf(text, sizeof text, "%d:%02d", minutes, rest);
    return text;
}

}  // namespace clarivex
