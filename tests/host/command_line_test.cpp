// The command line as a structure, and the words of its errors.
#include "host/command_line.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "host/errors.h"

namespace clarivex {
namespace {

CommandLine Parse(std::initializer_list<const char*> words) {
    return ParseCommandLine(std::vector<const char*>(words));
}

std::string ErrorOf(std::initializer_list<const char*> words) {
    try {
        Parse(words);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
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
    EXPECT_TRUE(options.caption && options.quiet && options.timing);
    EXPECT_EQ(options.input, "-");
    EXPECT_EQ(options.output, "-");
    EXPECT_EQ(Parse({"enhance", "--plugin", "x.dll", "a", "b"}).enhance.plugin, "x.dll");
}

TEST(CommandLine, HelpAndVersionWinOverTheRest) {
    EXPECT_EQ(Parse({"--help"}).command, Command::help);
    EXPECT_EQ(Parse({"enhance", "--nonsense", "--help"}).command, Command::help);
    EXPECT_EQ(Parse({"--version"}).command, Command::version);
    EXPECT_EQ(Parse({"info"}).command, Command::info);
    EXPECT_EQ(Parse({"enhance", "--quiet", "--", "--help", "--odd"}).enhance.input, "--help");
}

TEST(CommandLine, ErrorsNameTheWordAndWhatWouldBeRight) {
    EXPECT_EQ(ErrorOf({"enhance", "--sharp", "1", "a", "b"}), "unknown option --sharp");
    EXPECT_EQ(ErrorOf({"enhance", "--format", "rgb", "a", "b"}),
              "--format rgb: the value must be one of yv12, iyuv, yuy2");
    EXPECT_EQ(ErrorOf({"enhance", "a", "b", "--mode"}), "--mode needs a value behind it");
    EXPECT_EQ(ErrorOf({"enhance", "--quiet=1", "a", "b"}), "--quiet takes no value");
    EXPECT_EQ(ErrorOf({"enhance", "a"}), "enhance needs two files, IN and OUT (- for a pipe), 1 given");
    EXPECT_EQ(ErrorOf({"enhance", "a", "b", "c"}), "enhance needs two files, IN and OUT (- for a pipe), 3 given");
    EXPECT_EQ(ErrorOf({"tune\x1b[2J"}), "unknown command tune?[2J");
    EXPECT_EQ(ErrorOf({"info", "now"}), "info takes no arguments, but now follows");
    EXPECT_NE(ErrorOf({}), "");
    EXPECT_NE(ErrorOf({"enhance", "--plugin", "x.dll", "--simd", "sse2", "a", "b"}), "");
}

TEST(CommandLine, NumbersOutsideTheirRangeAreRefused) {
    for (const char* sharpness : {"", "-0.1", "2.01", "nan", "inf", "1x", "0x1", "1,5", "1e99"})
        EXPECT_NE(ErrorOf({"enhance", "--sharpness", sharpness, "a", "b"}), "") << sharpness;
    for (const char* frames : {"", "0", "-1", "1.5", "99999999999999999999", "3f"})
        EXPECT_NE(ErrorOf({"enhance", "--frames", frames, "a", "b"}), "") << frames;
    EXPECT_EQ(Parse({"enhance", "--sharpness", "0", "a", "b"}).enhance.sharpness, 0.0f);
    EXPECT_EQ(Parse({"enhance", "--sharpness", "2", "a", "b"}).enhance.sharpness, 2.0f);
}

}  // namespace
}  // namespace clarivex
