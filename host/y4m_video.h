// Y4M streams as videos.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/byte_stream.h"
#include "host/options.h"
#include "host/report.h"
#include "host/video_stream.h"
#include "host/y4m.h"

namespace clarivex {

class Y4mVideoReader final : public VideoReader {
public:
    /// Reads the stream's header. Pictures in full range come in video range; notes and warnings tell of that and of
    /// interlacing. Throws RunError for what Y4mReader refuses, and for a time to start at without a frame rate.
    Y4mVideoReader(std::unique_ptr<FileSource> stream, const PartOptions& wanted, Report& report);

    const VideoInfo& Info() const override { return info; }
    bool Read(VideoFrame& frame, const WritablePlanes& planes) override;

private:
    void SetTimes(const PartOptions& wanted);

    std::unique_ptr<FileSource> source;
    Y4mReader reader;
    VideoInfo info;
    uint64_t skipped = 0;  // frames before the first that is wanted
    uint64_t wantedFrames = UINT64_MAX;
    uint64_t framesRead = 0;
};

class Y4mVideoWriter final : public VideoWriter {
public:
    /// Opens the path and writes the stream's header. Warns where frames do not come at the one rate that is written.
    /// Throws RunError.
    ///
    /// video  of the pictures written; the tags that it has from a Y4M stream go on
    Y4mVideoWriter(const std::string& path, const VideoInfo& video, bool fullHeightChroma, Report& report);

    void Write(const VideoFrame& frame, const PicturePlanes& planes) override;
    void Finish() override { sink.Close(); }

    PictureSize Size() const override { return size; }

    /// The frames written are whole as they are.
    std::string Abandon() override { return name; }

private:
    void CheckTime(int64_t start);

    std::string name;
    PictureSize size;
    FileSink sink;
    Y4mWriter writer;
    Report& told;
    double framesAStep = 0.0;             // by the rate written; 0 where there is none to keep
    std::optional<int64_t> firstStart{};  // in steps of the video's time base
    uint64_t framesWritten = 0;
};

}  // namespace clarivex
