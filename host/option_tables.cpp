// What each option is called, takes, says of itself and sets.
#include "host/option_tables.h"

#include <cstdint>
#include <limits>

namespace clarivex {

namespace {

constexpr auto noLimit = std::numeric_limits<uint64_t>::max();

/// Mode is EnlargeMode or a number.
template <class Mode>
Option ModeOption(Mode& mode) {
    return Choice("--mode", mode,
                  {{"never", static_cast<Mode>(EnlargeMode::never)},
                   {"auto", static_cast<Mode>(EnlargeMode::automatic)},
                   {"always", static_cast<Mode>(EnlargeMode::always)}},
                  "when to enlarge by 3/2; never: sharpen at the picture's own size; auto: enlarge if the processor is "
                  "fast enough");
}

Option SharpnessOption(float& sharpness) {
    return NumberOption("--sharpness", "N", sharpness, 0.0f, 2.0f, "crispness of edges");
}

Option LightingOption(bool& lighting) { return Switch("--lighting", lighting, "automatic lighting control"); }

/// How pictures are enhanced, for every command that enhances any.
std::vector<Option> PictureOptionsOf(PictureOptions& picture) {
    return {
        ModeOption(picture.mode),
        SharpnessOption(picture.sharpness),
        LightingOption(picture.lighting),
        Choice(
            "--limits", picture.limits, {{"off", SizeLimits::off}, {"plugin", SizeLimits::plugin}},
            "off: pictures of any size up to 8192 a side are enhanced whole; plugin: as the plug-in does in a player, "
            "which leaves pictures of 1440x860 and more as they are, at the upper left of a larger black one"),
        Choice("--simd", picture.simd,
               {{"scalar", "scalar"}, {"sse2", "sse2"}, {"avx2", "avx2"}, {"avx512", "avx512"}, {"auto", "auto"}},
               "instruction set of the kernels, all of which give the same pictures; auto: the best there is"),
    };
}

/// What only a player sees of a picture: its samples, its padding, the plug-in's own decisions.
std::vector<Option> PlayerOptionsOf(PictureOptions& picture) {
    return {
        Choice(
            "--padding", picture.padding, {{"crop", Padding::crop}, {"keep", Padding::keep}},
            "crop: the columns that the plug-in adds to reach a multiple of 8 are not written; keep: its whole picture "
            "is"),
        Choice("--format", picture.format,
               {{"yv12", SampleFormat::yv12}, {"iyuv", SampleFormat::iyuv}, {"yuy2", SampleFormat::yuy2}},
               "samples handed to the plug-in; yuy2 gives 4:2:2"),
        Choice("--hd", picture.allowHd, {{"allow", true}, {"bypass", false}},
               "bypass: pictures of 589824 samples (1024x576) or more pass unchanged"),
        Switch("--caption", picture.caption, "the plug-in's opening caption over the first 276 frames; default off"),
        Completing(WordKind::file,
                   TextOption("--plugin", "PATH", picture.plugin,
                              "in the Windows program: go through this library instead of the code "
                              "linked in; the plug-in's limits on the size then stand",
                              "the path of a plug-in library", [](std::string_view path) { return !path.empty(); })),
    };
}

Option DeinterlacingOption(Deinterlacing& deinterlacing) {
    return Choice("--deinterlace", deinterlacing, {{"auto", Deinterlacing::automatic}, {"off", Deinterlacing::off}},
                  "auto: frames that say they are interlaced are deinterlaced by bwdif; Y4M never is");
}

Option QuietOption(bool& quiet) {
    return Flag("--quiet", "", quiet, "no notes, no progress, no summary; warnings and errors stay");
}

const std::string timeForms =
    "a time such as 90, 90.5, 1:30 or 1:02:03.5, at most " + std::to_string(mostHours) + " hours";

std::vector<Option> PartOptionsOf(PartOptions& part) {
    const auto parseLasting = [](std::string_view word) {
        const auto time = ParseTime(word);
        return time && *time > 0 ? time : std::nullopt;
    };
    return {
        ValueOption(
            "--start", "TIME", part.start,
            "begin here; TIME is seconds (90.5), minutes and seconds (1:30) or hours too (1:02:03.5); default 0",
            timeForms, ParseTime),
        ValueOption("--duration", "TIME", part.duration, "take so much from there on; default: up to the end",
                    timeForms + ", and above 0", parseLasting),
        NumberOption("--frames", "N", part.frames, uint64_t{1}, noLimit, "stop after N frames; default: at the end"),
    };
}

std::vector<Option> FilmOptionsOf(FilmOptions& film) {
    return {
        TextOption("--encoder", "NAME", film.encoder,
                   "FFmpeg's name of the video encoder; default: libx264 for mp4, mkv and mov, VP9 for webm",
                   "the name of an encoder such as libx264", IsEncoderName),
        NumberOption(
            "--quality", "N", film.quality, 0.0, 10000.0,
            "on the encoder's own scale, mostly CRF, where less is better; by default libx264 gets 18, VP9 24"),
        TextOption("--encoder-options", "K=V:K=V", film.encoderOptions,
                   "further options of the encoder, such as preset=slow:tune=film; a colon in a value is written \\:",
                   "name=value, more of them behind colons", AreEncoderOptions),
        Flag("--lossless", "", film.lossless,
             "FFV1, which keeps every sample, in place of another encoder and quality"),
        DeinterlacingOption(film.deinterlacing),
        Flag("--strict", "", film.strict,
             "damage in the input, which is otherwise noted and skipped, ends in exit code 1"),
    };
}

std::vector<Option> OutputOptionsOf(EnhanceOptions& options) {
    const auto isFolder = [](std::string_view path) { return !path.empty(); };
    const auto isSuffix = [](std::string_view text) { return text.find_first_of("/\\") == std::string_view::npos; };
    Option suffix = TextOption("--suffix", "TEXT", options.suffix,
                               "with --into: what stands behind the name of the input, before its ending",
                               "a text without / and \\", isSuffix);
    suffix.standard = options.suffix;
    return {
        Flag("--overwrite", "-y", options.overwrite,
             "replace a film that is there already, which is refused otherwise; Y4M files are always replaced"),
        Completing(
            WordKind::folder,
            TextOption(
                "--into", "FOLDER", options.folder,
                "all files are inputs, and what is made of each goes here, into the same kind of file, or mkv where "
                "that cannot be written; one that fails does not stop the others",
                "the path of a folder", isFolder)),
        suffix,
    };
}

std::vector<Option> ReportOptionsOf(EnhanceOptions& options) {
    return {
        QuietOption(options.quiet),
        Flag(
            "--json", "", options.json,
            "close with a line of figures for scripts on standard output, or on standard error where the video goes to "
            "standard output"),
        Flag("--timing", "", options.timing, "print the time spent inside ProcessOutput"),
    };
}

}  // namespace

std::vector<OptionGroup> OptionsOf(EnhanceOptions& options) {
    return {{"The picture", PictureOptionsOf(options.picture)},
            {"Part of the video", PartOptionsOf(options.part)},
            {"Films", FilmOptionsOf(options.film)},
            {"Outputs", OutputOptionsOf(options)},
            {"What is told", ReportOptionsOf(options)},
            {"The plug-in's own ways", PlayerOptionsOf(options.picture)}};
}

std::vector<OptionGroup> OptionsOf(PlaySettings& settings) {
    return {
        {"The picture",
         {ModeOption(settings.look.mode), SharpnessOption(settings.look.sharpness),
          LightingOption(settings.look.lighting), Switch("--noise", settings.look.noise, "a little film-like noise"),
          Switch("--caption", settings.look.caption, "the plug-in's opening caption over the first 276 frames"),
          Switch("--enhance", settings.look.enhanced, "off: begin with the picture as it is; a key switches"),
          NumberOption("--split", "N", settings.look.split, 0.0f, 1.0f,
                       "the part of the width, from the left, that shows the picture plainly enlarged, with a line "
                       "behind it")}},
        {"Playing",
         {ValueOption("--start", "TIME", settings.start, "begin here, at a time such as 90.5, 1:30 or 1:02:03.5",
                      timeForms, ParseTime),
          Flag("--fullscreen", "", settings.fullScreen, "begin in full screen"),
          Flag("--paused", "", settings.paused, "show the first picture and wait"),
          NumberOption("--volume", "N", settings.volume, 0.0f, 1.0f, "of the sound"),
          Flag("--mute", "", settings.muted, "begin without sound"),
          Flag("--quiet", "", settings.quiet, "no notes, no status; errors stay")}}};
}

std::vector<OptionGroup> OptionsOf(CompareOptions& options) {
    const std::string within = std::to_string(largestEnlargedSide) + "x" + std::to_string(largestEnlargedSide);
    return {
        {"The view",
         {ValueOption("--at", "TIME", options.at,
                      "the moment shown, as seconds (90.5), 1:30 or 1:02:03.5; default: the middle of the video",
                      timeForms, ParseTime),
          ValueOption("--crop", "WxH+X+Y", options.crop,
                      "this part of the enlarged picture, its corner X from the left and Y from the top; default: all",
                      "WIDTHxHEIGHT+X+Y, all within " + within, ParseCrop),
          NumberOption("--zoom", "N", options.zoom, 1, largestZoom, "pixels across and down for each sample"),
          Choice("--layout", options.layout, {{"side", ComparisonLayout::side}, {"split", ComparisonLayout::split}},
                 "side: both pictures beside each other; split: the halves of one")}},
        {"The picture", PictureOptionsOf(options.picture)},
        {"Input and output",
         {DeinterlacingOption(options.deinterlacing),
          Flag("--overwrite", "-y", options.overwrite,
               "replace OUT if it is there already, which is refused otherwise"),
          QuietOption(options.quiet)}}};
}

std::vector<OptionGroup> OptionsOf(CaptionOptions& options) {
    const auto parseSize = [](std::string_view word) { return ParseSize(word, largestPictureSide); };
    return {
        {"",
         {NumberOption("--frame", "N", options.frame, 1, largestCaptionFrame,
                       "frame of the stream; the caption fades in until 72, out from 144, and is gone at 276"),
          ValueOption("--size", "WxH", options.size,
                      "size of the picture, each side 1 to " + std::to_string(largestPictureSide) + "; default 960x720",
                      "WIDTHxHEIGHT, each from 1 to " + std::to_string(largestPictureSide), parseSize),
          ValueOption("--aspect", "N:D", options.sampleAspect, "width to height of a sample, 1:64 to 64:1; default 1:1",
                      "two whole numbers such as 16:11, between 1:64 and 64:1", ParseAspect)}}};
}

std::vector<OptionGroup> OptionsOf(TuneOptions& options) {
    constexpr uint32_t highestSeed = std::numeric_limits<uint32_t>::max();
    return {{"",
             {NumberOption("--attempts", "N", options.tuning.attempts, 1, mostTuningAttempts, "number of attempts"),
              NumberOption("--seed", "N", options.tuning.seed, uint32_t{0}, highestSeed,
                           "another seed makes other attempts"),
              Choice("--scale", options.tuning.scale,
                     {{"1", TuningScale::unscaled}, {"3/2", TuningScale::threeHalves}, {"2", TuningScale::twofold}},
                     "enlargement that is tuned"),
              QuietOption(options.quiet)}}};
}

}  // namespace clarivex
