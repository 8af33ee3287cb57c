// What ffmpeg.exe tells of a film, read from its words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/picture.h"
#include "host/video_colour.h"

namespace clarivex {

struct FilmStream {
    enum class Kind { pictures, cover, sound, subtitle, attachment, other };

    int index = 0;
    Kind kind = Kind::other;
    std::string codec;

    bool operator==(const FilmStream&) const = default;
};

/// "subtitle stream 2 (subrip)".
std::string NameOf(const FilmStream& stream);

/// A film's first picture, as it is once it stands upright.
struct FirstPicture {
    PictureSize size;
    double seconds = 0.0;  ///< when it is shown, behind the moment to start at
    std::string samples;   ///< by FFmpeg's name, such as yuv420p
    bool isFullRange = false;
    bool isInterlaced = false;
    int32_t codedLines = 0;  ///< its height before it was turned
    VideoColour colour;      ///< as told; the site of chroma is not
};

struct FilmFacts {
    std::vector<FilmStream> streams;
    std::optional<double> seconds;  ///< that it plays
    Ratio frameRate;                ///< of its pictures; not known where that is not told
    bool isTurned = false;          ///< its pictures were turned upright
    std::optional<FirstPicture> picture;
};

/// Reads what `ffmpeg -i FILM -vf showinfo` writes to standard error, up to the first picture.
FilmFacts ReadFilmFacts(std::string_view words);

bool IsRgb(const FirstPicture& picture);

/// The stream that the pictures are taken from: the first that is no cover. Null where there is none.
const FilmStream* PicturesOf(const FilmFacts& facts);

}  // namespace clarivex
