// What is to be played and how, as values and as the words that the command hands to the player.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace clarivex {

struct PlaySettings {
    std::string film;        ///< a file's path or a URI
    bool enhanced = true;    ///< otherwise pictures are shown as they are
    float sharpness = 1.0F;  ///< 0 … 2
    bool lighting = true;    ///< black, white and saturation follow the film
    std::int32_t mode = 2;   ///< whether pictures are enlarged: 0 never, 1 where the processor is fast enough, 2 always
    bool noise = true;       ///< a little film-like noise
    bool caption = false;    ///< over the first frames
    float split = 0.0F;      ///< 0 … 1: the part of the width, from the left, that shows the source as it is
    bool fullScreen = false;  ///< from the beginning
    float volume = 1.0F;      ///< 0 … 1
    bool muted = false;
    bool paused = false;     ///< shows the first picture and waits
    std::int64_t start = 0;  ///< microseconds from the film's first moment on; not negative
    bool quiet = false;      ///< only warnings and errors are told

    bool operator==(const PlaySettings&) const = default;
};

constexpr float largestSharpness = 2.0F;

/// The settings as words of a command line; ReadPlayWords makes the same settings of them.
std::vector<std::string> PlayWords(const PlaySettings& settings);

/// The settings that such words stand for; none where one of them is no such word.
std::optional<PlaySettings> ReadPlayWords(std::span<const char* const> words);

}  // namespace clarivex
