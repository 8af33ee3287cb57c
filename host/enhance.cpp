// Reads, plays and writes frame by frame; every error gets the name of the stream it belongs to.
#include "host/enhance.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "engine/scale_modes.h"
#include "host/byte_stream.h"
#include "host/caption.h"
#include "host/naming.h"
#include "host/player.h"
#include "host/plugin_library.h"
#include "host/progress.h"
#include "host/y4m.h"
#include "pipeline/frame_geometry.h"
#include "platform/console.h"
#include "shell/caption.h"
#include "shell/instruction_set.h"

namespace clarivex {

namespace {

void Note(const EnhanceOptions& options, const std::string& text) {
    if (!options.quiet) std::fprintf(stderr, "clarivex: note: %s\n", text.c_str());
}

void ChooseSimd(const std::string& name) {
    if (UseInstructionSet(name)) return;
    std::string runnable;
    for (const std::string_view one : RunnableInstructionSets())
        runnable += (runnable.empty() ? "" : ", ") + std::string(one);
    throw RunError("--simd " + name + ": this processor cannot run it; it runs " + runnable);
}

std::optional<PluginLibrary> LoadPlugin(const std::string& path) {
    return path.empty() ? std::nullopt : std::optional<PluginLibrary>(path);
}

VideoFormat FormatOf(const Y4mHeader& header, SampleFormat pixelFormat) {
    return {pixelFormat, header.size, header.frameRate, header.sampleAspect};
}

PlayerSettings SettingsOf(const EnhanceOptions& options) {
    return {static_cast<uint32_t>(options.picture.mode), options.picture.sharpness, options.picture.lighting,
            options.picture.allowHd};
}

/// One run of the command. The members' order is the order in which they are needed.
class Enhancement {
public:
    explicit Enhancement(const EnhanceOptions& given);
    void Run();

private:
    void NoteLimits();
    std::optional<uint64_t> ExpectedFrames() const;
    FileSink OpenOutput() const;
    std::string OutputHeader() const;
    PictureSize OutputSize() const { return bypassed ? reader.Header().size : player.OutputSize(); }
    void CopyFrames(Progress& progress);
    bool ReadFrame() {
        return Naming(InputName(options.inputs.front()), [this] { return reader.ReadFrame(frame); });
    }
    void WriteFrame();
    void Report(const Progress& progress) const;

    const EnhanceOptions& options;
    std::optional<PluginLibrary> plugin;
    FileSource source;
    Y4mReader reader;
    Player player;
    bool bypassed;
    FileSink sink;
    Y4mWriter writer;
    Y4mFrame frame;
};

Enhancement::Enhancement(const EnhanceOptions& given)
    : options(given),
      plugin(LoadPlugin(given.picture.plugin)),
      source(Naming(InputName(given.inputs.front()), [&] { return FileSource(given.inputs.front()); })),
      reader(Naming(InputName(given.inputs.front()), [this] { return Y4mReader(source); })),
      player(plugin ? plugin->MakeMediaObject() : MakeLinkedMediaObject(),
             FormatOf(reader.Header(), given.picture.format), SettingsOf(given)),
      bypassed(
          Naming(InputName(given.inputs.front()), [this] { return player.Negotiate() == Negotiated::bypassedForHd; })),
      sink(OpenOutput()),
      writer(Naming(OutputName(given.output), [this] { return Y4mWriter(sink, OutputHeader()); })) {
    NoteLimits();
    if (options.timing) player.NoteTimes();
}

FileSink Enhancement::OpenOutput() const {
    if (SameFile(options.inputs.front(), options.output))
        throw RunError(OutputName(options.output) + ": is the input file too; name another output");
    return Naming(OutputName(options.output), [this] { return FileSink(options.output); });
}

std::string Enhancement::OutputHeader() const {
    const bool fullHeightChroma = !bypassed && options.picture.format == SampleFormat::yuy2;
    return Y4mHeaderLine(reader.Header(), {.size = OutputSize(), .fullHeightChroma = fullHeightChroma});
}

void Enhancement::NoteLimits() {
    const PictureSize& size = reader.Header().size;
    if (options.picture.caption.value_or(false) && !HasCaptionFont()) Note(options, noFontText);
    if (bypassed)
        Note(options, "high definition is bypassed: the pictures pass unchanged (--hd allow enhances them)");
    else if (size.width < smallestWidth)
        Note(options, "pictures less than " + std::to_string(smallestWidth) +
                          " wide are not enhanced: they stand at the upper left of the output");
    else if (OutputSize().width > size.width && !IsEnlargedInFull({size.width, size.height}))
        Note(options,
             "pictures this large are not enlarged in both directions: they stand at the upper left of the "
             "output (--mode never keeps their size)");
}

std::optional<uint64_t> Enhancement::ExpectedFrames() const {
    const auto size = source.Size();
    if (size) return std::min(reader.FramesIn(*size), options.part.frames);
    return options.part.frames == UINT64_MAX ? std::nullopt : std::optional(options.part.frames);
}

void Enhancement::Run() {
    Progress progress(!options.quiet && IsTerminal(stderr), ExpectedFrames());
    CopyFrames(progress);
    if (!bypassed) player.Finish();
    Naming(OutputName(options.output), [this] { sink.Close(); });
    progress.Wipe();
    Report(progress);
}

void Enhancement::CopyFrames(Progress& progress) {
    try {
        while (progress.Count() < options.part.frames && ReadFrame()) {
            WriteFrame();
            progress.OneDone();
        }
    } catch (const RunError& error) {
        const uint64_t written = progress.Count();
        throw RunError(std::string(error.what()) + "; " + std::to_string(written) +
                       (written == 1 ? " whole frame was written" : " whole frames were written"));
    }
}

void Enhancement::WriteFrame() {
    const PicturePlanes planes =
        bypassed ? PlanarPicture{reader.Header().size, frame.samples}.Planes() : player.Play(frame.samples);
    Naming(OutputName(options.output), [&] { writer.WriteFrame(frame.parameters, planes); });
}

void Enhancement::Report(const Progress& progress) const {
    if (!options.quiet)
        std::fprintf(stderr, "clarivex: %s\n",
                     SummaryText(progress.Count(), reader.Header().size, OutputSize(), progress.Seconds()).c_str());
    if (options.timing) std::fprintf(stderr, "clarivex: %s\n", TimingText(player.ProcessTimes()).c_str());
}

}  // namespace

void RunEnhance(const EnhanceOptions& options) {
    if (options.picture.plugin.empty()) {
        ChooseSimd(options.picture.simd);
        ShowCaption(options.picture.caption.value_or(false));
    }
    Enhancement(options).Run();
}

}  // namespace clarivex
