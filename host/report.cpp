#include "host/report.h"

#include <algorithm>
#include <cstdio>

#include "platform/console.h"

namespace clarivex {

Report::Report(bool quiet) : isQuiet(quiet), showsProgress(!quiet && IsTerminal(stderr)) {}

Report::~Report() { WipeProgress(); }

void Report::Note(const std::string& text) {
    if (!isQuiet) Speak("note: ", text);
}

void Report::Warn(const std::string& text) { Speak("warning: ", text); }

void Report::Tell(const std::string& text) {
    if (!isQuiet) Speak("", text);
}

void Report::ShowProgress(const std::string& text) {
    if (!showsProgress) return;
    const std::lock_guard held(lock);
    lettersShown = std::max(lettersShown, text.size());  // spaces wipe what a longer line left behind
    std::fprintf(stderr, "\r%-*s", static_cast<int>(lettersShown), text.c_str());
    std::fflush(stderr);
}

void Report::WipeProgress() {
    const std::lock_guard held(lock);
    Wipe();
}

void Report::Speak(const char* kind, const std::string& text) {
    const std::lock_guard held(lock);
    Wipe();
    std::fprintf(stderr, "clarivex: %s%s\n", kind, text.c_str());
}

void Report::Wipe() {
    if (lettersShown > 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(lettersShown), "");
    lettersShown = 0;
}

}  // namespace clarivex
