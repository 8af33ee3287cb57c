// The program without FFmpeg's libraries: Y4M is all it knows.
#include "host/comparison.h"
#include "host/errors.h"
#include "host/film.h"

namespace clarivex {

std::unique_ptr<VideoReader> OpenFilm(const FilmRequest&, Report&) {
    throw RunError(
        "is not a Y4M stream, and this program reads no other; "
        "ffmpeg -i CLIP -pix_fmt yuv420p -f yuv4mpegpipe makes one, the Linux program reads films of any kind");
}

std::unique_ptr<VideoWriter> MakeFilm(const FilmTarget&, Report&) {
    throw RunError("this program writes only Y4M; name a .y4m file or -, the Linux program writes films");
}

std::vector<uint8_t> ComparisonPng(const ComparedPictures&, const ComparisonView&, Report&) {
    throw RunError("cannot be compared by this program, which writes no PNG files; the Linux program does");
}

}  // namespace clarivex
