// Writes a film: pictures encoded, all else copied, under the film's name only when it is whole.
#pragma once

#include <memory>
#include <optional>

#include "host/film.h"
#include "host/film/av_objects.h"
#include "host/film/stream_copies.h"

namespace clarivex {

class FilmWriter final : public VideoWriter {
public:
    /// Opens the encoder and writes the container's header beside the path. Throws RunError; nothing is left then.
    FilmWriter(const FilmTarget& target, Report& report);

    void Write(const VideoFrame& frame, const PicturePlanes& planes) override;
    void Finish() override;
    std::string Abandon() override;
    PictureSize Size() const override { return {encoder->width, encoder->height}; }
    std::string Description() const override;

private:
    struct OutputDeleter {
        void operator()(AVFormatContext* output) const;
    };
    /// The unfinished file, deleted at the end unless it is to stay.
    struct PartFile {
        ~PartFile();
        std::string path;
        bool isThere = false;
    };

    void ClaimPath(bool overwrite);
    void AddPictures(const FilmTarget& target);
    void WriteHeader();
    void FillPicture(const PicturePlanes& planes);
    void Encode(const AVFrame* picture);
    void Close();

    std::string path;
    PartFile part;
    PictureSize givenSize;
    bool fullHeightChroma;
    AVRational timeBase;
    std::shared_ptr<FilmOrigin> origin;
    std::unique_ptr<AVFormatContext, OutputDeleter> output;
    AvPointer<AVCodecContext> encoder;
    AvPointer<AVFrame> picture = MakeAvFrame();
    AvPointer<AVPacket> packet = MakeAvPacket();
    std::optional<StreamCopies> copies;
    int64_t lastTime = INT64_MIN;
    int64_t usualLength = 1;
    bool hasPictures = false;
};

}  // namespace clarivex
