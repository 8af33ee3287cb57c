// What a run came to, in words for a person and in a line for a script.
#pragma once

#include <cstdint>
#include <string>

#include "host/picture.h"

namespace clarivex {

struct RunFigures {
    std::string input;
    std::string output;
    std::string description;  ///< how it is stored; may be empty
    uint64_t frames = 0;
    PictureSize from;
    PictureSize to;
    double seconds = 0.0;       ///< that it took
    double videoSeconds = 0.0;  ///< that the frames play; 0 where it is not known
    uint64_t damagedPlaces = 0;
};

/// "300 frames, 640x480 to 960x720, 45.6 frames/s, written to film.mkv (H264 by libx264)".
std::string SummaryText(const RunFigures& figures);

/// One JSON object in one line, line end included.
std::string JsonText(const RunFigures& figures);

/// "2 damaged places were left out or mended".
std::string DamageText(uint64_t places);

/// Prints a line for scripts to standard output, or to standard error where that carries the video.
void PrintFigures(const std::string& line, bool outputIsTaken);

}  // namespace clarivex
