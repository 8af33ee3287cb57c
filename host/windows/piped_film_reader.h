// Reads a film by way of ffmpeg.exe, whose pictures come through a pipe.
#pragma once

#include <memory>
#include <optional>

#include "host/byte_stream.h"
#include "host/film.h"
#include "host/windows/ffmpeg_program.h"
#include "host/windows/film_facts.h"
#include "host/y4m.h"

namespace clarivex {

class PipedFilmReader final : public VideoReader {
public:
    /// Reads up to the first picture. `report` must outlive the reader. Throws RunError.
    PipedFilmReader(const FilmRequest& request, Report& report);

    const VideoInfo& Info() const override { return info; }
    bool Read(VideoFrame& frame, const WritablePlanes& planes) override;
    uint64_t DamagedPlaces() const override { return damagedPlaces; }

private:
    FilmFacts AskForFacts(const FilmRequest& request);
    void Begin(const FilmFacts& facts, const FilmRequest& request);
    bool ReadPicture(const WritablePlanes& planes);
    void CheckEnd();
    void TellEnd(const std::string& errors);

    Report& told;
    std::unique_ptr<ChildProcess> child;  // outlives the pipe
    std::unique_ptr<FileSource> pipe;
    std::optional<Y4mReader> stream;
    VideoInfo info;
    Y4mFrame first;
    bool firstIsGiven = false;
    bool hasEnded = false;
    uint64_t framesGiven = 0;
    uint64_t damagedPlaces = 0;
};

}  // namespace clarivex
