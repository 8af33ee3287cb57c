// The command line as a structure, and the words of its errors.
#include "host/command_line.h"

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

TEST(CommandLine, EveryOptionArrives) {
    const EnhanceOptions options =
        Parse({"enhance", "--format=yuy2", "--mode",   "auto",   "-",    "--sharpness", "1.75", "--lighting",
               "off",     "--hd",          "bypass",   "--simd", "sse2", "--frames",    "12",   "--caption",
               "on",      "--quiet",       "--timing", "-"})
            .enhance;
    EXPECT_EQ(options.format, SampleFormat::yuy2);
    EXPECT_EQ(options.mode, EnlargeMode::automatic);
    EXPECT_EQ(options.sharpness, 1.75f);
    EXPECT_FALSE(options.lighting || options.allowHd);
    EXPECT_EQ(options.simd, "sse2");
    EXPECT_EQ(options.frames, 12u);
    EXPECT_TRUE(options.caption.value() && options.quiet && options.timing);
    EXPECT_EQ(options.input + options.output, "--");
    EXPECT_EQ(Parse({"enhance", "--plugin", "x.dll", "a", "b"}).enhance.plugin, "x.dll");

    const CaptionOptions caption =
        Parse({"caption", "--frame=276", "out.y4m", "--size", "1x8192", "--aspect", "64:45"}).caption;
    EXPECT_EQ(caption.frame, 276);
    EXPECT_EQ(caption.size, (PictureSize{1, 8192}));
    EXPECT_EQ(caption.sampleAspect, (Ratio{64, 45}));
    EXPECT_EQ(caption.output, "out.y4m");

    const TuneOptions tune =
        Parse({"tune", "--attempts", "7", "a.bmp", "--seed=4294967295", "--scale", "2", "--quiet"}).tune;
    EXPECT_EQ(tune.tuning.attempts, 7);
    EXPECT_EQ(tune.tuning.seed, UINT32_MAX);
    EXPECT_EQ(tune.tuning.scale, TuningScale::twofold);
    EXPECT_TRUE(tune.quiet);
    EXPECT_EQ(tune.target, "a.bmp");
}

TEST(CommandLine, HelpAndVersionWinOverTheRest) {
    EXPECT_EQ(Parse({"--help"}).command, Command::help);
    EXPECT_EQ(Parse({"enhance", "--nonsense", "--help"}).command, Command::help);
    EXPECT_EQ(Parse({"--version"}).command, Command::version);
    EXPECT_EQ(Parse({"info"}).command, Command::info);
    EXPECT_EQ(Parse({"enhance", "--quiet", "--", "--help", "--odd"}).enhance.input, "--help");
}

TEST(CommandLine, ErrorsNameTheWordAndWhatWouldBeRight) {
    EXPECT_EQ(RefusalOf({"enhance", "--sharp", "1", "a", "b"}), "unknown option --sharp");
    EXPECT_EQ(RefusalOf({"enhance", "--format", "rgb", "a", "b"}),
              "--format rgb: the value must be one of yv12, iyuv, yuy2");
    EXPECT_EQ(RefusalOf({"enhance", "a", "b", "--mode"}), "--mode needs a value behind it");
    EXPECT_EQ(RefusalOf({"enhance", "--quiet=1", "a", "b"}), "--quiet takes no value");
    EXPECT_EQ(RefusalOf({"enhance", "a"}), "enhance needs two files, IN and OUT (- for a pipe), 1 given");
    EXPECT_EQ(RefusalOf({"tune\x1b[2J"}), "unknown command tune?[2J");
    EXPECT_EQ(RefusalOf({"info", "now"}), "info takes no arguments, but now follows");
    EXPECT_NE(RefusalOf({"enhance", "--plugin", "x.dll", "--simd", "sse2", "a", "b"}), "");
    EXPECT_NE(RefusalOf({"enhance", "--plugin", "x.dll", "--caption", "off", "a", "b"}), "");
    EXPECT_EQ(RefusalOf({"caption"}), "caption needs one file, OUT (- for a pipe), 0 given");
    EXPECT_EQ(RefusalOf({"tune", "--scale", "1.5", "a"}), "--scale 1.5: the value must be one of 1, 3/2, 2");
}

TEST(CommandLine, NumbersOutsideTheirRangeAreRefused) {
    struct {
        const char* command;
        const char* option;
        std::vector<const char*> values;
    } const cases[] = {
        {"enhance", "--sharpness", {"", "-0.1", "2.01", "nan", "inf", "1x", "0x1", "1,5", "1e99"}},
        {"enhance", "--frames", {"", "0", "-1", "1.5", "99999999999999999999", "3f"}},
        {"caption", "--frame", {"", "0", "-1", "1001", "1.5"}},
        {"caption", "--size", {"", "0x1", "1x0", "8193x1", "1x8193", "12", "12x", "x12", "1x1x1", "-1x-1"}},
        {"caption", "--aspect", {"", "0:1", "1:0", "1", "1:1:1", "1.5:1", "65:1", "1:65"}},
        {"tune", "--attempts", {"", "0", "-1", "1000001", "1.5"}},
        {"tune", "--seed", {"", "-1", "4294967296", "0x1"}}};
    for (const auto& [command, option, values] : cases)
        for (const char* value : values)
            EXPECT_TRUE(RefusalOf({command, option, value, "a"}).starts_with(option)) << option << " " << value;
    EXPECT_EQ(Parse({"enhance", "--sharpness", "0", "a", "b"}).enhance.sharpness, 0.0f);
    EXPECT_EQ(Parse({"enhance", "--sharpness", "2", "a", "b"}).enhance.sharpness, 2.0f);
}

}  // namespace
}  // namespace clarivex
