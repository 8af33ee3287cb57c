// What a run tells a person while it goes: notes, warnings, and a line of progress that they do not break.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>

namespace clarivex {

/// Speaks on standard error. May be called from several threads.
class Report {
public:
    /// quiet  only warnings are shown
    explicit Report(bool quiet);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    /// Whether a line of progress would be seen.
    bool ShowsProgress() const { return showsProgress; }

    /// "clarivex: note: …": worth knowing.
    void Note(const std::string& text);

    /// "clarivex: warning: …": the result may not be what was wanted; never hidden.
    void Warn(const std::string& text);

    /// "clarivex: …": what was done; hidden when quiet.
    void Tell(const std::string& text);

    /// Writes the line of progress over the one before.
    void ShowProgress(const std::string& text);

    /// Takes the line of progress off the terminal.
    void WipeProgress();

private:
    void Speak(const char* kind, const std::string& text);
    void Wipe();

    std::mutex lock;
    const bool isQuiet;
    const bool showsProgress;
    size_t lettersShown = 0;
};

}  // namespace clarivex
