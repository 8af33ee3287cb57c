// What the player is asked to play, found.
#pragma once

#include <string>

namespace clarivex {

struct FilmSource {
    std::string uri;
    std::string name;   ///< for messages: the path or URI as it was given, without control characters
    std::string title;  ///< for the window: a file's name without its folders
};

/// The film that a path or a URI names; a file of that name goes before a URI. Throws PlayError for what is no file that can be
/// read.
FilmSource FindFilm(const std::string& film);

}  // namespace clarivex
