// The door to videos of any kind. Behind it stand FFmpeg's libraries where the program is built with them (host/film/), and
// otherwise an ffmpeg.exe that a person has (host/windows/).
#pragma once

#include <memory>
#include <string>

#include "host/byte_stream.h"
#include "host/options.h"
#include "host/report.h"
#include "host/video_stream.h"

namespace clarivex {

/// What is read of a film, and how.
struct FilmRequest {
    std::string path;              ///< of a regular file; "-" or another where there is a stream
    ByteSource* stream = nullptr;  ///< read in place of the path, from its first byte on; outlives the reader
    PartOptions part;
    Deinterlacing deinterlacing = Deinterlacing::automatic;
    bool withCompanions = true;  ///< the other streams' packets come with the frames
};

/// Opens a film and reads up to its first picture. Notes tell what is converted. Throws RunError, without the path, for what
/// holds no video, for high dynamic range, and where there is no ffmpeg.exe to read it.
std::unique_ptr<VideoReader> OpenFilm(const FilmRequest& request, Report& report);

/// What is written to a film.
struct FilmTarget {
    std::string path;
    VideoInfo info;                 ///< of the pictures written; `origin` gives what is copied beside them
    bool fullHeightChroma = false;  ///< the pictures are 4:2:2
    FilmOptions options;
    bool overwrite = false;
};

/// Starts a film beside its path, which it takes in Finish. Notes tell what the container does not take. Throws RunError,
/// without the path, for a container or an encoder that is not there, for a path that is taken, and where there is no
/// ffmpeg.exe to write it.
std::unique_ptr<VideoWriter> MakeFilm(const FilmTarget& target, Report& report);

}  // namespace clarivex
