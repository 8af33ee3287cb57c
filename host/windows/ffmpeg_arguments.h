// What ffmpeg.exe is told to read a film's pictures into a pipe and to make a film of those that come through one. Pure.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/film.h"
#include "host/windows/ffmpeg_program.h"
#include "host/windows/film_facts.h"

namespace clarivex {

/// Where a film that is written took its pictures from: what else that holds is copied.
struct FilmOrigin {
    std::string path;
    std::vector<FilmStream> streams;
    int pictures = 0;              ///< index of the stream that was read
    double firstSeconds = 0.0;     ///< when the first of them is shown, behind the start
    int64_t start = 0;             ///< microseconds from its first moment on
    int64_t duration = INT64_MAX;  ///< microseconds
};

/// How the film that is written is encoded.
struct FilmEncoding {
    std::string muxer;    ///< FFmpeg's name of the container
    std::string encoder;  ///< FFmpeg's name; empty for the one that it takes by itself
    std::string quality;  ///< the encoder's option for it: crf, qp or q
};

/// FFmpeg's name of the container that a path's ending stands for. Throws RunError for one that is not known.
std::string MuxerOf(const std::string& path);

/// The encoder that the container is usually written with.
std::string UsualEncoderOf(const FilmOptions& options, const std::string& muxer);

/// Has the film described as ReadFilmFacts reads it, with its first picture from `start` (microseconds) on.
FfmpegArguments FactsArguments(const std::string& path, int64_t start);

/// Sends the wanted part through a pipe as Y4M: progressive 8-bit 4:2:0 in video range, upright, at one rate.
FfmpegArguments ReadArguments(const FilmFacts& facts, const FilmRequest& request);

/// Has the film's other streams begun in a container of their own at `part`, to see whether it takes them.
FfmpegArguments TrialArguments(const FilmOrigin& origin, const std::vector<FilmStream>& copied,
                               const FilmEncoding& encoding, const std::string& part);

/// Writes a film to `part` from a Y4M stream in a pipe and, where `copied` names some, other streams of the pictures' origin.
FfmpegArguments WriteArguments(const FilmTarget& target, const std::vector<FilmStream>& copied,
                               const FilmEncoding& encoding, const std::string& part);

}  // namespace clarivex
