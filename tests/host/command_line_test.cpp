// The command line as a structure, and the words of its errors.
#include "host/command_line.h"

#include "host/errors.h"
#include "tests/host/error_of.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

CommandLine Parse(std::initializer_list<const char*> words) {
    return ParseCommandLine(std::vector<const char*>(words));
}

std::string RefusalOf(std::initializer_list<const char*> words) {
    return ErrorOf([=] { Parse(words); });
}

// What shows in the program's output is told by its own test.
TEST(CommandLine, OptionsArriveAmongTheFiles) {
    const EnhanceOptions options = Parse({"enhance",
                                          "--format=iyuv",
                                          "-",
                                          "--mode",
                                          "auto",
                                          "--sharpness",
                                          "1.75",
                                          "--lighting",
                                          "off",
                                          "--padding",
                                          "keep",
                                          "--start",
                                          "1:02:03.5",
                                          "--duration=0.000001",
                                          "--encoder",
                                          "libx265",
                                          "--quality",
                                          "22.5",
                                          "--encoder-options",
                                          "preset=slow:x265-params=a=1\\:fast",
                                          "--deinterlace",
                                          "off",
                                          "--strict",
                                          "--json",
                                          "-y",
                                          "--",
                                          "--help"})
                                       .enhance;
    EXPECT_EQ(options.picture.format, SampleFormat::iyuv);
    EXPECT_EQ(options.picture.mode, EnlargeMode::automatic);
    EXPECT_EQ(options.picture.sharpness, 1.75f);
    EXPECT_FALSE(options.picture.lighting);
    EXPECT_EQ(options.picture.padding, Padding::keep);
    EXPECT_EQ(options.part.start, 3723500000);
    EXPECT_EQ(options.part.duration, 1);
    EXPECT_EQ(options.film.encoder, "libx265");
    EXPECT_EQ(options.film.quality, 22.5);
    EXPECT_EQ(options.film.encoderOptions, "preset=slow:x265-params=a=1\\:fast");
    EXPECT_EQ(options.film.deinterlacing, Deinterlacing::off);
    EXPECT_TRUE(options.film.strict && options.json && options.overwrite && !options.film.lossless);
    EXPECT_EQ(options.inputs.front() + options.output, "---help");
    EXPECT_EQ(Parse({"enhance", "a", "--", "--"}).enhance.output, "--");
    EXPECT_EQ(Parse({"enhance", "--simd", "sse2", "a", "b"}).enhance.picture.simd, "sse2");
    const CaptionOptions caption = Parse({"caption", "out.y4m", "--size", "1x8192", "--aspect", "64:45"}).caption;
    EXPECT_EQ(caption.size, (PictureSize{1, 8192}));
    EXPECT_EQ(caption.sampleAspect, (Ratio{64, 45}));
    const TuningOptions tuning = Parse({"tune", "--seed=4294967295", "--scale", "2", "a.bmp"}).tune.tuning;
    EXPECT_EQ(tuning.seed, UINT32_MAX);
    EXPECT_EQ(tuning.scale, TuningScale::twofold);
    const CompareOptions compare = Parse({"compare", "in.mkv", "--at", "90", "--crop", "320x240+8+12048", "--zoom=16",
                                          "--layout", "split", "--limits", "plugin", "a.PnG"})
                                       .compare;
    EXPECT_EQ(compare.at, 90000000);
    EXPECT_EQ(compare.crop, (PictureCrop{{320, 240}, 8, 12048}));
    EXPECT_EQ(compare.layout, ComparisonLayout::split);
    EXPECT_EQ(compare.picture.limits, SizeLimits::plugin);
    EXPECT_EQ(compare.input + compare.output, "in.mkva.PnG");
}

TEST(CommandLine, ThePlayerGetsWhatIsAskedFor) {
    const PlaySettings asked = Parse({"play", "--mode", "auto", "--sharpness=0.3", "--lighting=off", "--noise=off",
                                      "--caption=on", "--enhance=off", "--split=0.25", "--start", "1:00.5",
                                      "--fullscreen", "--paused", "--volume=0.7", "--mute", "--quiet", "a = b"})
                                   .play;
    EXPECT_EQ(
        asked,
        (PlaySettings{"a = b", {false, 0.3F, false, 1, false, true, 0.25F}, 0.7F, true, true, true, 60500000, true}));
    for (const PlaySettings& settings : {asked, PlaySettings{}}) {
        const std::vector<std::string> words = PlayWords(settings);
        std::vector<const char*> pointers;
        for (const std::string& word : words) pointers.push_back(word.c_str());
        EXPECT_EQ(ReadPlayWords(pointers), settings);
    }
    for (const char* word : {"", "film", "split=", "split=1x", "muted=2", "nonsense=1"})
        EXPECT_EQ(ReadPlayWords(std::span(&word, 1)), std::nullopt) << word;
}

TEST(CommandLine, AFolderTakesManyFiles) {
    const EnhanceOptions options = Parse({"enhance", "a", "--into", "out", "--suffix=", "b", "c"}).enhance;
    EXPECT_EQ(options.inputs, (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(options.output + options.folder + options.suffix, "out");
    EXPECT_EQ(Parse({"enhance", "--into=out", "a"}).enhance.suffix, "-enhanced");
}

TEST(CommandLine, ALoadedPluginKeepsItsLimits) {
    EXPECT_EQ(Parse({"enhance", "a", "b"}).enhance.picture.limits, SizeLimits::off);
    const PictureOptions picture = Parse({"enhance", "--plugin", "x.dll", "a", "b"}).enhance.picture;
    EXPECT_EQ(picture.plugin, "x.dll");
    EXPECT_EQ(picture.limits, SizeLimits::plugin);
}

TEST(CommandLine, HelpKnowsItsCommand) {
    struct {
        std::vector<const char*> words;
        Command command;
        const char* topic;
    } const cases[] = {{{"help"}, Command::help, ""},
                       {{"help", "tune"}, Command::help, "tune"},
                       {{"-h", "enhance"}, Command::help, "enhance"},
                       {{"enhance", "--nonsense", "--help"}, Command::help, "enhance"},
                       {{"nonsense", "-h"}, Command::help, ""},
                       {{"-V", "-h"}, Command::version, ""}};
    for (const auto& [words, command, topic] : cases) {
        EXPECT_EQ(ParseCommandLine(words).command, command) << words.front();
        EXPECT_EQ(ParseCommandLine(words).help.command, topic) << words.front();
    }
}

TEST(CommandLine, ErrorsNameTheWordAndWhatWouldBeRight) {
    struct {
        std::vector<const char*> words;
        const char* error;
    } const cases[] = {
        {{}, "a command is missing: enhance, play, compare, caption, tune, info or help"},
        {{"enhance", "--nonsense", "1", "a", "b"}, "unknown option --nonsense"},
        {{"enhance", "--sharp", "1", "a", "b"}, "unknown option --sharp (did you mean --sharpness?)"},
        {{"enhance", "--qality=1", "a", "b"}, "unknown option --qality (did you mean --quality?)"},
        {{"enhance", "--stirct", "a", "b"}, "unknown option --stirct (did you mean --strict?)"},
        {{"enhance", "--site", "a", "b"}, "unknown option --site"},  // two letters of four: nobody meant --simd
        {{"tune", "--mode", "auto", "a"}, "unknown option --mode"},
        {{"enhnace"}, "unknown command enhnace (did you mean enhance?)"},
        {{"help", "inf"}, "unknown command inf (did you mean info?)"},
        {{"help", "info", "tune"}, "help takes one command, but tune follows"},
        {{"tune\x1b[2J"}, "unknown command tune?[2J"},
        {{"enhance", "--format", "rgb", "a", "b"}, "--format rgb: the value must be one of yv12, iyuv, yuy2"},
        {{"enhance", "a", "b", "--mode"}, "--mode needs a value behind it"},
        {{"enhance", "-y=1", "a", "b"}, "-y takes no value"},
        {{"play"}, "play needs one film, FILE or URI, 0 given"},
        {{"play", "-"}, "play takes no pipe: it needs a FILE or URI, in which it can jump"},
        {{"enhance", "a"}, "enhance needs two files, IN and OUT (- for a pipe), 1 given"},
        {{"enhance", "a", "b", "c"},
         "enhance needs two files, IN and OUT (- for a pipe), 3 given; --into FOLDER takes many inputs"},
        {{"enhance", "--into", "f"}, "enhance --into needs at least one file to enhance, 0 given"},
        {{"enhance", "--into", "f", "a", "-"}, "- has no name to be given to a file: --into takes files only"},
        {{"enhance", "--suffix", "x", "a", "b"}, "--suffix needs --into: it names the files that are made there"},
        {{"info", "now"}, "info takes no arguments, but now follows"},
        {{"caption"}, "caption needs one file, OUT (- for a pipe), 0 given"},
        {{"compare", "a", ".pn"}, ".pn: compare writes a PNG file, whose name ends in .png"},
        {{"tune", "--scale", "1.5", "a"}, "--scale 1.5: the value must be one of 1, 3/2, 2"}};
    for (const auto& [words, error] : cases) EXPECT_EQ(ErrorOf([&] { ParseCommandLine(words); }), error);
}

TEST(CommandLine, WhatExcludesEachOtherIsNamed) {
    const std::vector<const char*> pairs[] = {{"--plugin=x.dll", "--simd=sse2"},
                                              {"--plugin=x.dll", "--caption=off"},
                                              {"--plugin=x.dll", "--limits=off"},
                                              {"--lossless", "--encoder=libx264"},
                                              {"--lossless", "--quality=1"}};
    for (const auto& pair : pairs) {
        const std::string error = RefusalOf({"enhance", pair[1], pair[0], "a", "b"});
        for (const std::string option : pair)
            EXPECT_NE(error.find(option.substr(0, option.find('='))), std::string::npos) << option << ": " << error;
    }
}

TEST(CommandLine, ValuesOutsideTheirRangeAreRefused) {
    struct {
        const char* command;
        const char* option;
        std::vector<const char*> bad;
        std::vector<const char*> good;
    } const cases[] = {
        {"enhance", "--sharpness", {"", "-0.1", "2.01", "nan", "inf", "1x", "0x1", "1,5", "1e99"}, {"0", "2"}},
        {"enhance", "--frames", {"", "0", "-1", "1.5", "99999999999999999999", "3f"}, {"1", "18446744073709551615"}},
        {"enhance",
         "--start",
         {"", ".", "1.", ".5", "-1", "1:60", "1:-1", "1:2:60", "1:60:2", "0:1:2:3", ":1", "1:", "1:2.5:3", "1e3",
          "500:00:00.000001", "999999999999", "9999999999999999999999", "1.5x", "+1"},
         {"0", "100", "500:00:00", "1:2.1234567", "00:00:00.0"}},
        {"enhance", "--duration", {"", "0", "0.0000009"}, {"0.0000010"}},
        {"enhance", "--quality", {"", "-0.1", "10000.1", "nan", "inf", "1x"}, {"0", "10000"}},
        {"enhance", "--encoder", {"", "lib x264", "a/b"}, {"h264_v4l2m2m", "FFV1"}},
        {"enhance",
         "--encoder-options",
         {"", "a", "a=", "=1", "a=1:", ":a=1", "a=1::b=2", "a=1:b", "a b=1"},
         {"a==:b=\\"}},
        {"enhance", "--into", {""}, {"-"}},
        {"caption", "--frame", {"", "0", "-1", "1001", "1.5"}, {"1000"}},
        {"caption", "--size", {"", "0x1", "1x0", "8193x1", "1x8193", "12", "12x", "x12", "1x1x1", "-1x-1"}, {"8192x1"}},
        {"caption", "--aspect", {"", "0:1", "1:0", "1", "1:1:1", "1.5:1", "65:1", "1:65"}, {"1:64"}},
        {"compare",
         "--crop",
         {"", "1x1", "1x1+1", "1x1+-1+0", "0x1+0+0", "1x12289+0+0", "1x1+12288+0", "9x9+0+12280", "1x1+0+0+0",
          "1x1+2147483647+0"},
         {"12288x1+0+12287"}},
        {"compare", "--zoom", {"0", "17"}, {"16"}},
        {"tune", "--attempts", {"", "0", "-1", "1000001", "1.5"}, {"1000000"}},
        {"tune", "--seed", {"", "-1", "4294967296", "0x1"}, {"0"}}};
    const auto isRefused = [](const char* command, const std::string& option, const char* value) {
        return RefusalOf({command, option.c_str(), value})
            .starts_with(option + " " + Printable(value) + ": the value must");
    };
    for (const auto& [command, option, bad, good] : cases) {
        for (const char* value : bad) EXPECT_TRUE(isRefused(command, option, value)) << option << " " << value;
        for (const char* value : good) EXPECT_FALSE(isRefused(command, option, value)) << option << " " << value;
    }
    for (const char* suffix : {"a/b", "\\"}) EXPECT_TRUE(isRefused("enhance", "--suffix", suffix));
}

}  // namespace
}  // namespace clarivex
