// What the player tells on standard error: notes, and on a terminal a line that follows the film.
#pragma once

#include <cstddef>
#include <string>

namespace clarivex {

class StatusLine {
public:
    /// quiet  nothing but errors is told
    explicit StatusLine(bool quiet);
    ~StatusLine() { Wipe(); }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Whether the line is seen.
    bool IsShown() const { return isShown; }

    /// Writes the line over the one before, cut to the terminal's width.
    void Show(std::string text);

    /// "clarivex: …", on a line of its own.
    void Tell(const std::string& text);

    void Wipe();

private:
    const bool isQuiet;
    const bool isShown;
    size_t lettersShown = 0;
};

/// Hours only where there are any: 0:04, 1:02:03. Nanoseconds; what is negative is not known: "?".
std::string ClockTime(int64_t nanoseconds);

}  // namespace clarivex
