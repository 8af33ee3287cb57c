#include "gstreamer/player/film_source.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "gstreamer/player/handles.h"
#include "gstreamer/player/play_error.h"

namespace clarivex {

namespace {

namespace files = std::filesystem;

std::string Printable(std::string text) {
    std::ranges::replace_if(
        text, [](char letter) { return (letter >= 0 && letter < ' ') || letter == '\x7f'; }, '?');
    return text;
}

void CheckReadable(const std::string& path, const std::string& name) {
    std::error_code error;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    std::string problem = file < 0 ? std::strerror(errno) : "";
    if (file >= 0) close(file);
    if (problem.empty() && files::is_directory(path, error)) problem = "it is a folder";
    if (!problem.empty()) throw PlayError(name + ": cannot be opened for reading: " + problem);
}

}  // namespace

FilmSource FindFilm(const std::string& film) {
    std::error_code error;
    const std::string name = Printable(film);
    if (!files::exists(film, error) && gst_uri_is_valid(film.c_str()) != 0) return {film, name, name};
    CheckReadable(film, name);
    GError* failure = nullptr;
    std::string uri = Taken(gst_filename_to_uri(film.c_str(), &failure));
    if (failure != nullptr) throw PlayError(name + ": " + Error(failure)->message);
    return {std::move(uri), name, Printable(files::path(film).filename())};
}

}  // namespace clarivex
