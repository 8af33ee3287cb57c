#include "host/compare.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>

#include "host/comparison.h"
#include "host/errors.h"
#include "host/file_replacement.h"
#include "host/naming.h"
#include "host/picture_player.h"
#include "host/report.h"
#include "host/video_files.h"
#include "host/words.h"
#include "platform/console.h"
#include "platform/paths.h"

namespace clarivex {

namespace {

namespace files = std::filesystem;

constexpr double settling = 1.0;            // seconds of the video in which the lighting finds its levels
constexpr double sameMoment = 1e-4;         // seconds; what times lose by rounding stays below
constexpr Ratio assumedFrameLength{1, 25};  // seconds, where a video has no times
constexpr double microsecondsASecond = 1e6;

void CheckFiles(const CompareOptions& options) {
    std::error_code error;
    const bool isOther =
        files::exists(PathOf(options.input), error) && !files::is_regular_file(PathOf(options.input), error);
    if (options.input == "-" || isOther)
        throw RunError(InputName(options.input) + ": is no file, which compare needs: it looks for a moment in it");
    Naming(OutputName(options.output), [&] {
        if (SameFile(options.input, options.output)) throw RunError("is the input file too; name another output");
        if (!options.overwrite && files::exists(PathOf(options.output), error))
            throw RunError("is there already; --overwrite replaces it");
    });
}

/// Looks for the frame of a moment and enhances it: the last that starts by then, after those of the second before.
class Moment {
public:
    /// Throws RunError. Both are kept by reference.
    Moment(const CompareOptions& given, Report& told);

    ComparedPictures Pictures();
    std::string Description() const;

private:
    void Open(int64_t startMicroseconds, Report& toldTo);
    double FindMoment();
    void PlayUpTo(double moment);
    void Show(SourceFrame& source);
    double SecondsOf(int64_t steps) const;
    double EndOf(const VideoFrame& frame) const { return SecondsOf(frame.start + std::max<int64_t>(frame.length, 1)); }

    const CompareOptions& options;
    Report& report;
    Report silence{true};  // for what is opened again
    std::unique_ptr<VideoReader> reader;
    std::optional<PicturePlayer> player;
    std::vector<uint8_t> plain;
    EnhancedFrame enhanced;
    double opened = 0.0;  // where the reader begins, in seconds from the video's first moment on
    double shown = -1.0;  // where the frame starts; below 0 while there is none
};

Moment::Moment(const CompareOptions& given, Report& told) : options(given), report(told) {
    Open(0, report);
    const bool isFilm = !reader->Info().y4mHeader;
    const double moment = Naming(InputName(options.input), [this] { return FindMoment(); });
    const bool hasTimes = reader->Info().seconds.has_value();  // without them there is nothing to find a place by
    const double start = hasTimes ? std::max(0.0, moment - settling) : 0.0;
    if (isFilm) Open(std::llround(start * microsecondsASecond), silence);
    Naming(InputName(options.input), [&] { PlayUpTo(moment); });
}

void Moment::Open(int64_t startMicroseconds, Report& toldTo) {
    PartOptions part;
    part.start = startMicroseconds;
    reader = OpenVideo(options.input, part, options.deinterlacing, false, toldTo);
    opened = static_cast<double>(startMicroseconds) / microsecondsASecond;
    plain.resize(reader->Info().size.PlanarBytes());
}

/// The one that was asked for, or the middle, in seconds. A film that does not tell how long it is, is read to its end.
double Moment::FindMoment() {
    const VideoInfo& info = reader->Info();
    if (options.at && !info.timeBase.Known()) throw RunError("states no frame rate, so that --at means nothing");
    if (options.at) return static_cast<double>(*options.at) / microsecondsASecond;
    if (info.seconds) return *info.seconds / 2.0;
    if (info.frames) return SecondsOf(static_cast<int64_t>(*info.frames)) / 2.0;
    VideoFrame frame;
    double end = 0.0;
    while (NotedSignal() == 0 && reader->Read(frame, PlanesIn<uint8_t>(info.size, plain)))
        if (frame.hasPicture) end = EndOf(frame);
    return end / 2.0;
}

void Moment::PlayUpTo(double moment) {
    player.emplace(options.picture, reader->Info(), report);
    SourceFrame source = player->MakeSource();
    enhanced = player->MakeEnhanced();
    double end = 0.0;
    while (NotedSignal() == 0 && reader->Read(source.frame, source.planes)) {
        const double start = opened + SecondsOf(source.frame.start);
        if (!source.frame.hasPicture) continue;
        if (shown >= 0.0 && start > moment + sameMoment) return;
        end = opened + EndOf(source.frame);
        if (start < moment - settling - sameMoment) continue;
        shown = start;
        Show(source);
    }
    if (NotedSignal() != 0) throw RunError("interrupted; nothing was written");
    if (shown < 0.0 || (options.at && moment > end - sameMoment))
        throw RunError("has no frame at " + Fixed(moment, 3) + " s, where --at looks; it ends at " + Fixed(end, 3) +
                       " s");
}

void Moment::Show(SourceFrame& source) {
    auto target = plain.begin();
    for (const auto& plane : source.planes) target = std::copy(plane.begin(), plane.end(), target);
    player->Load(source);
    player->Play(source, enhanced);
}

double Moment::SecondsOf(int64_t steps) const {
    const Ratio base = reader->Info().timeBase;
    const Ratio step = base.Known() ? base : assumedFrameLength;
    return static_cast<double>(steps) * step.numerator / step.denominator;
}

ComparedPictures Moment::Pictures() {
    const PictureSize size = reader->Info().size;
    return {size, PlanarPicture{size, plain}.Planes(), player->OutputSize(), player->PlanesOf(enhanced),
            reader->Info().colour};
}

std::string Moment::Description() const {
    return "frame at " + Fixed(shown, 3) + " s, " + SizeText(reader->Info().size) + " and " +
           SizeText(player->OutputSize());
}

void Compare(const CompareOptions& options) {
    CheckFiles(options);
    Report report(options.quiet);
    Moment moment(options, report);
    const std::vector<uint8_t> png = Naming(InputName(options.input), [&] {
        return ComparisonPng(moment.Pictures(), {options.crop, options.zoom, options.layout}, report);
    });
    FileReplacement file(options.output);
    file.Fill([&](ByteSink& sink) { sink.Write(png); });
    file.TakePlace();
    report.Tell(moment.Description() + ", written to " + OutputName(options.output));
}

}  // namespace

void RunCompare(const CompareOptions& options) {
    try {
        Compare(options);
    } catch (const RunError& error) {
        if (NotedSignal() != 0) throw Interruption(NotedSignal(), error.what());
        throw;
    }
}

}  // namespace clarivex
