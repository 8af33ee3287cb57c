#include "host/film/damage_log.h"

#include <cstdio>

#include "host/film/library_log.h"

namespace clarivex {

namespace {

constexpr uint64_t mostNotes = 10;  // of one film; what follows is only counted

}  // namespace

void DamageLog::Add(std::optional<double> seconds, const std::string& what) {
    TakeLastLibraryError();  // it is told here in other words
    if (++count > mostNotes) return;
    told.Note((seconds ? "at " + TimeText(*seconds) + ": " : "") + what);
    if (count == mostNotes) told.Note("further damage is only counted");
}

std::string TimeText(double seconds) {
    char text[64];
    const auto milliseconds = static_cast<int64_t>(seconds * 1000.0 + 0.5);
    const auto part = [&](int64_t unit, int64_t count) { return static_cast<int>(milliseconds / unit % count); };
    if (milliseconds >= 3600000)
        std::snprintf(text, sizeof text, "%d:%02d:%02d.%03d", part(3600000, 1000000), part(60000, 60), part(1000, 60),
                      part(1, 1000));
    else
        std::snprintf(text, sizeof text, "%d:%02d.%03d", part(60000, 60), part(1000, 60), part(1, 1000));
    return text;
}

}  // namespace clarivex
