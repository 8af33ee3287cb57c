#include "host/y4m_video.h"

#include <algorithm>
#include <cmath>
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

Y4mVideoWriter::Y4mVideoWriter(const std::string& path, const VideoInfo& video, bool fullHeightChroma, Report& report)
    : name(path), size(video.size), sink(path), writer(sink, HeaderLine(video, fullHeightChroma)), told(report) {
    const Ratio rate = video.frameRate;
    const Ratio step = video.timeBase;
    if (rate.Known() && step.Known())
        framesAStep = static_cast<double>(rate.numerator) / rate.denominator * step.numerator / step.denominator;
}

void Y4mVideoWriter::Write(const VideoFrame& frame, const PicturePlanes& planes) {
    if (!frame.hasPicture) return;
    CheckTime(frame.start);
    writer.WriteFrame(frame.parameters, planes);
    ++framesWritten;
}

/// Warns once.
void Y4mVideoWriter::CheckTime(int64_t start) {
    constexpr double mostAside = 5.0;  // frames: what a rate that is rounded comes to in a while is no other rate
    if (!firstStart) firstStart = start;
    const double shown = static_cast<double>(start - *firstStart) * framesAStep;
    const auto written = static_cast<double>(framesWritten);
    if (framesAStep == 0.0 || std::abs(shown - written) <= mostAside + written / 100.0) return;
    told.Warn(
        "the frame rate varies, but Y4M has only one: sound from elsewhere will not be in step; a .mkv keeps the "
        "times");
    framesAStep = 0.0;
}

}  // namespace clarivex
