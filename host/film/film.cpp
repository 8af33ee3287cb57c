#include "host/film.h"

#include "host/film/film_reader.h"
#include "host/film/film_writer.h"

namespace clarivex {

std::unique_ptr<VideoReader> OpenFilm(const FilmRequest& request, Report& report) {
    return std::make_unique<FilmReader>(request, report);
}

std::unique_ptr<VideoWriter> MakeFilm(const FilmTarget& target, Report& report) {
    return std::make_unique<FilmWriter>(target, report);
}

}  // namespace clarivex
