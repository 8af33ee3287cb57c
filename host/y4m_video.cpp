#include "host/y4m_video.h"

#include <algorithm>
#include <utility>

#include "host/errors.h"
#include "host/studio_range.h"

namespace clarivex {

namespace {

constexpr uint64_t microsecondsASecond = 1'000'000;

/// The first frame that does not start before a time.
uint64_t FramesBefore(int64_t microseconds, Ratio rate) {
    const double frames = static_cast<double>(microseconds) * rate.numerator / rate.denominator / microsecondsASecond;
    return static_cast<uint64_t>(std::min(std::max(0.0, frames - 1e-6) + 0.999999, 1e18));
}

std::string HeaderLine(const VideoInfo& video, bool fullHeightChroma) {
    if (!video.y4mHeader)
        return Y4mHeaderLine(
            Y4mFormat{video.size, video.frameRate, video.sampleAspect, video.colour.chromaSite, fullHeightChroma});
    const bool toVideoRange = video.y4mHeader->range == ColourRange::full;
    return Y4mHeaderLine(*video.y4mHeader, Y4mChanges{video.size, fullHeightChroma, video.isPart, toVideoRange});
}

}  // namespace

Y4mVideoReader::Y4mVideoReader(std::unique_ptr<FileSource> stream, const PartOptions& wanted, Report& report)
    : source(std::move(stream)), reader(*source) {
    const Y4mHeader& header = reader.Header();
    info.size = header.size;
    info.frameRate = header.frameRate;
    info.sampleAspect = header.sampleAspect;
    info.colour = WithAssumedColour({.chromaSite = header.chromaSite}, header.size.height);
    info.y4mHeader = header;
    info.isPart = wanted.start != 0 || wanted.duration != INT64_MAX || wanted.frames != UINT64_MAX;
    SetTimes(wanted);
    if (header.interlacing != Interlacing::progressive) report.Warn(InterlacingWarning(header));
    if (header.range == ColourRange::full) report.Note("full range is brought to video range");
}

void Y4mVideoReader::SetTimes(const PartOptions& wanted) {
    const Ratio rate = info.frameRate;
    wantedFrames = wanted.frames;
    if (rate.Known()) {
        info.timeBase = {rate.denominator, rate.numerator};
        skipped = FramesBefore(wanted.start, rate);
        if (wanted.duration != INT64_MAX) wantedFrames = std::min(wantedFrames, FramesBefore(wanted.duration, rate));
    } else if (wanted.start != 0 || wanted.duration != INT64_MAX) {
        throw RunError("states no frame rate, so that --start and --duration mean nothing; --frames counts");
    }
    if (const auto bytes = source->Size()) {
        const uint64_t there = reader.FramesIn(*bytes);
        info.frames = std::min(there - std::min(there, skipped), wantedFrames);
    } else if (wantedFrames != UINT64_MAX) {
        info.frames = wantedFrames;
    }
    if (info.frames && rate.Known())
        info.seconds = static_cast<double>(*info.frames) * rate.denominator / rate.numerator;
}

bool Y4mVideoReader::Read(VideoFrame& frame, const WritablePlanes& planes) {
    if (framesRead == wantedFrames) return false;
    for (; skipped > 0; --skipped)
        if (!reader.ReadFrame(frame.parameters, planes)) throw RunError("ends before the time to start at");
    if (!reader.ReadFrame(frame.parameters, planes)) return false;
    if (info.y4mHeader->range == ColourRange::full) ToVideoRange(planes);
    frame.hasPicture = true;
    frame.start = static_cast<int64_t>(framesRead++);
    frame.length = 1;
    return true;
}

Y4mVideoWriter::Y4mVideoWriter(const std::string& path, const VideoInfo& video, bool fullHeightChroma)
    : name(path), size(video.size), sink(path), writer(sink, HeaderLine(video, fullHeightChroma)) {}

void Y4mVideoWriter::Write(const VideoFrame& frame, const PicturePlanes& planes) {
    if (frame.hasPicture) writer.WriteFrame(frame.parameters, planes);
}

}  // namespace clarivex
