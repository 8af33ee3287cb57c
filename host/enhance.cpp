// Sends videos through the media object: read, enhanced and written at once, on three threads.
#include "host/enhance.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <new>
#include <optional>
#include <set>
#include <vector>

#include "host/byte_stream.h"
#include "host/film.h"
#include "host/naming.h"
#include "host/picture_player.h"
#include "host/progress.h"
#include "host/run_figures.h"
#include "host/three_stages.h"
#include "host/video_files.h"
#include "platform/console.h"
#include "platform/paths.h"

namespace clarivex {

namespace {

/// How many frames may be under way on each side of the media object: a few, and of large pictures only what it takes to
/// work at once.
size_t FramesUnderWay(PictureSize size) {
    constexpr size_t enoughBytes = size_t{1} << 26;
    return std::clamp<size_t>(enoughBytes / size.PlanarBytes(), 2, 4);
}

/// The video that comes out: the same with other pictures.
VideoInfo EnhancedInfo(const VideoInfo& source, PictureSize size) {
    VideoInfo enhanced = source;
    enhanced.size = size;
    return enhanced;
}

/// One video. The members' order is the order in which they are needed.
class Enhancement {
public:
    Enhancement(const EnhanceOptions& given, const std::string& inputPath, const std::string& outputPath);
    void Run();

private:
    void CopyFrames();
    bool Read(SourceFrame& source);
    void Write(EnhancedFrame& enhanced);
    void Finish();
    [[noreturn]] void BreakOff(const std::string& reason);
    [[noreturn]] void EndInterrupted();
    std::string WhatIsLeft();
    void TellFigures();

    const EnhanceOptions& options;
    const std::string input;
    const std::string output;
    Report report;
    std::unique_ptr<VideoReader> reader;
    PicturePlayer player;
    std::unique_ptr<VideoWriter> writer;
    Progress progress;
};

Enhancement::Enhancement(const EnhanceOptions& given, const std::string& inputPath, const std::string& outputPath)
    : options(given),
      input(inputPath),
      output(outputPath),
      report(given.quiet),
      reader(OpenVideo(input, given.part, given.film.deinterlacing, !IsY4mOutput(output), report)),
      player(Naming(InputName(input), [&] { return PicturePlayer(given.picture, reader->Info(), report); })),
      writer(MakeVideo(output, input, EnhancedInfo(reader->Info(), player.OutputSize()), player.GivesFullHeightChroma(),
                       given, report)),
      progress(report, reader->Info().frames, reader->Info().seconds) {
    if (options.timing) player.NoteTimes();
}

void Enhancement::Run() {
    bool isWhole = false;
    try {
        CopyFrames();
        if (NotedSignal() == 0) {
            Finish();
            isWhole = true;  // whatever signal comes now, it is too late
        }
    } catch (const RunError& error) {
        if (NotedSignal() == 0) BreakOff(error.what());  // the signal may have broken off a read or ended a reader
    }
    if (!isWhole) EndInterrupted();
    report.WipeProgress();
    TellFigures();
}

void Enhancement::CopyFrames() {
    std::vector<SourceFrame> sources;
    std::vector<EnhancedFrame> enhanced;
    const size_t count = FramesUnderWay(player.OutputSize());
    for (size_t i = 0; i < count; ++i) {
        sources.push_back(player.MakeSource());
        enhanced.push_back(player.MakeEnhanced());
    }
    RunThreeStages(
        sources, enhanced, [this](SourceFrame& frame) { return Read(frame); },
        [this](SourceFrame& source, EnhancedFrame& target) {
            Naming(InputName(input), [&] { player.Play(source, target); });
        },
        [this](EnhancedFrame& frame) { Write(frame); }, WakeReaders);
}

bool Enhancement::Read(SourceFrame& source) {
    if (NotedSignal() != 0) return false;
    const bool more = Naming(InputName(input), [&] { return reader->Read(source.frame, source.planes); });
    if (more) player.Load(source);
    return more && NotedSignal() == 0;
}

void Enhancement::Write(EnhancedFrame& enhanced) {
    const PicturePlanes planes = player.PlanesOf(enhanced);
    Naming(OutputName(output), [&] { writer->Write(enhanced.frame, planes); });
    if (!enhanced.frame.hasPicture) return;
    const Ratio base = reader->Info().timeBase;
    const auto steps = static_cast<double>(enhanced.frame.start + enhanced.frame.length);
    progress.OneDone(base.Known() ? steps * base.numerator / base.denominator : 0.0);
}

void Enhancement::Finish() {
    player.Finish();
    Naming(OutputName(output), [this] { writer->Finish(); });
}

void Enhancement::BreakOff(const std::string& reason) {
    report.WipeProgress();
    throw RunError(reason + "; " + WhatIsLeft());
}

void Enhancement::EndInterrupted() {
    report.WipeProgress();
    throw Interruption(NotedSignal(), OutputName(output) + ": interrupted; " + WhatIsLeft());
}

std::string Enhancement::WhatIsLeft() {
    const std::string left = writer->Abandon();
    const uint64_t written = progress.Count();
    if (left.empty() && written > 0) return "nothing that can be played was kept";
    const std::string count = std::to_string(written) + (written == 1 ? " whole frame was" : " whole frames were");
    return count + " written" + (left.empty() || left == output ? "" : " and stand in " + PrintablePath(left));
}

void Enhancement::TellFigures() {
    const RunFigures figures{InputName(input),   OutputName(output),      writer->Description(),
                             progress.Count(),   reader->Info().size,     writer->Size(),
                             progress.Seconds(), progress.VideoSeconds(), reader->DamagedPlaces()};
    report.Tell(SummaryText(figures));
    if (options.timing) std::fprintf(stderr, "clarivex: %s\n", TimingText(player.ProcessTimes()).c_str());
    if (options.json) PrintFigures(JsonText(figures), output == "-");
    if (figures.damagedPlaces == 0) return;
    const std::string damage = InputName(input) + ": " + DamageText(figures.damagedPlaces);
    if (options.film.strict) throw RunError(damage + "; --strict makes that an error");
    report.Warn(damage);
}

void EnhanceOne(const EnhanceOptions& options, const std::string& input, const std::string& output) {
    std::optional<Enhancement> enhancement;
    try {
        enhancement.emplace(options, input, output);
    } catch (const RunError&) {  // an input that a signal ended looks like one that is broken
        if (NotedSignal() == 0) throw;
        throw Interruption(NotedSignal(), InputName(input) + ": interrupted before the first frame");
    }
    enhancement->Run();
}

namespace files = std::filesystem;

/// Where the output of an input goes: beside the others in the folder, in the same kind of file if such a film can be
/// written.
std::string OutputIn(const EnhanceOptions& options, const std::string& input) {
    const files::path path = PathOf(input);
    std::string extension = TextOf(path.extension());
    const std::set<std::string> kept = {".y4m", ".mkv", ".mp4", ".m4v", ".mov", ".webm"};
    if (!kept.contains(extension)) extension = ".mkv";
    return TextOf(PathOf(options.folder) / PathOf(TextOf(path.stem()) + options.suffix + extension));
}

/// Two inputs of one name would write over each other.
std::vector<std::string> OutputsIn(const EnhanceOptions& options) {
    std::vector<std::string> outputs;
    std::set<std::string> names;
    for (const std::string& input : options.inputs) {
        outputs.push_back(OutputIn(options, input));
        if (!names.insert(outputs.back()).second)
            throw UsageError(InputName(input) + ": another input would be written to " + OutputName(outputs.back()) +
                             " too; enhance them one by one");
    }
    return outputs;
}

void EnhanceMany(const EnhanceOptions& options) {
    const std::vector<std::string> outputs = OutputsIn(options);
    std::error_code error;
    files::create_directories(PathOf(options.folder), error);
    if (!files::is_directory(PathOf(options.folder), error))
        throw RunError(PrintablePath(options.folder) + ": cannot be made: name a folder that can be written to");
    std::string failed;
    size_t failures = 0;
    const auto tellFailure = [&](const std::string& input, const std::string& what) {
        std::fprintf(stderr, "clarivex: %s\n", what.c_str());
        failed += (failures++ == 0 ? "" : ", ") + InputName(input);
    };
    for (size_t i = 0; i < options.inputs.size(); ++i) {
        const std::string& input = options.inputs[i];
        try {
            EnhanceOne(options, input, outputs[i]);
        } catch (const Interruption&) {
            throw;
        } catch (const RunError& failure) {
            tellFailure(input, failure.what());
        } catch (const std::bad_alloc&) {  // the libraries say so of damaged files too
            tellFailure(input, InputName(input) + ": not enough memory for pictures of this size");
        }
    }
    if (failures > 0)
        throw RunError(std::to_string(failures) + " of " + std::to_string(options.inputs.size()) +
                       " failed: " + failed);
}

}  // namespace

void RunEnhance(const EnhanceOptions& options) {
    if (options.folder.empty())
        EnhanceOne(options, options.inputs.front(), options.output);
    else
        EnhanceMany(options);
}

}  // namespace clarivex
