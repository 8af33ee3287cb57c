// The door to films where FFmpeg's libraries are not built in: by way of an ffmpeg.exe.
#include "host/film.h"

#include "host/comparison.h"
#include "host/errors.h"
#include "host/windows/piped_film_reader.h"
#include "host/windows/piped_film_writer.h"

namespace clarivex {

std::unique_ptr<VideoReader> OpenFilm(const FilmRequest& request, Report& report) {
    return std::make_unique<PipedFilmReader>(request, report);
}

std::unique_ptr<VideoWriter> MakeFilm(const FilmTarget& target, Report& report) {
    return std::make_unique<PipedFilmWriter>(target, report);
}

std::vector<uint8_t> ComparisonPng(const ComparedPictures&, const ComparisonView&, Report&) {
    throw RunError("cannot be compared by this program, which writes no PNG files; the Linux program does");
}

}  // namespace clarivex
