// What is to be played and how, as values and as the words that the command hands to the player.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace clarivex {

constexpr float largestSharpness = 2.0F;

/// How pictures are shown.
struct Look {
    bool enhanced = true;    ///< otherwise they are as the film has them
    float sharpness = 1.0F;  ///< 0 … largestSharpness
    bool lighting = true;    ///< black, white and saturation follow the film
    int32_t mode = 2;        ///< whether they are enlarged: 0 never, 1 where the processor is fast enough, 2 always
    bool noise = true;       ///< a little film-like noise
    bool caption = false;    ///< over the first frames
    float split = 0.0F;      ///< 0 … 1: the part of the width, from the left, that shows the source as it is

    bool operator==(const Look&) const = default;
};

struct PlaySettings {
    std::string film;  ///< a file's path or a URI
    Look look;
    float volume = 1.0F;  ///< 0 … 1
    bool muted = false;
    bool fullScreen = false;  ///< from the beginning
    bool paused = false;      ///< shows the first picture and waits
    int64_t start = 0;        ///< microseconds from the film's first moment on; not negative
    bool quiet = false;       ///< only errors are told

    bool operator==(const PlaySettings&) const = default;
};

/// The settings as words of a command line; ReadPlayWords makes the same settings of them.
std::vector<std::string> PlayWords(const PlaySettings& settings);

/// The settings that such words stand for; none where one of them is no such word.
std::optional<PlaySettings> ReadPlayWords(std::span<const char* const> words);

}  // namespace clarivex
