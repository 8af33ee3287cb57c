// Writes a film by way of ffmpeg.exe: it encodes the pictures that go through a pipe and copies all else from their origin.
// The film bears its name only when it is whole.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/byte_stream.h"
#include "host/film.h"
#include "host/windows/ffmpeg_arguments.h"
#include "host/y4m.h"

namespace clarivex {

class PipedFilmWriter final : public VideoWriter {
public:
    /// Starts a film beside its path. Throws RunError; nothing is left then.
    PipedFilmWriter(const FilmTarget& target, Report& report);

    void Write(const VideoFrame& frame, const PicturePlanes& planes) override;
    void Finish() override;
    std::string Abandon() override;
    PictureSize Size() const override { return size; }
    std::string Description() const override;

private:
    /// The unfinished file, deleted at the end unless it is to stay.
    struct PartFile {
        ~PartFile();
        std::string path;
        bool isThere = false;
    };

    void ClaimPath(bool overwrite);
    void ChooseEncoder(const FilmOptions& options);
    void ChooseCopies(const FilmOrigin& origin, Report& report);
    bool Takes(const FilmOrigin& origin, const std::vector<FilmStream>& streams) const;
    void Start(const FilmTarget& target);
    void EndPipe();
    void CheckEnd();

    std::string path;
    PartFile part;
    PictureSize size;
    FilmEncoding encoding;
    std::vector<FilmStream> copied;
    std::unique_ptr<ChildProcess> child;  // outlives the pipe
    std::unique_ptr<FileSink> pipe;
    std::optional<Y4mWriter> stream;
    bool hasPictures = false;
};

}  // namespace clarivex
