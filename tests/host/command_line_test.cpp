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

// What shows in the program's output is told by its own test.
TEST(CommandLine, OptionsArriveAmongTheFiles) {
    const EnhanceOptions options = Parse({"enhance", "--format=iyuv", "-", "--mode", "auto", "--sharpness", "1.75",
                                          "--lighting", "off", "--", "--help"})
                                       .enhance;
    EXPECT_EQ(options.picture.format, SampleFormat::iyuv);
    EXPECT_EQ(options.picture.mode, EnlargeMode::automatic);
    EXPECT_EQ(options.picture.sharpness, 1.75f);
    EXPECT_FALSE(options.picture.lighting);
    EXPECT_EQ(options.inputs.front() + options.output, "---help");
    EXPECT_EQ(Parse({"enhance", "--plugin", "x.dll", "a", "b"}).enhance.picture.plugin, "x.dll");
    EXPECT_EQ(Parse({"enhance", "--simd", "sse2", "a", "b"}).enhance.picture.simd, "sse2");
    const CaptionOptions caption = Parse({"caption", "out.y4m", "--size", "1x8192", "--aspect", "64:45"}).caption;
    EXPECT_EQ(caption.size, (PictureSize{1, 8192}));
    EXPECT_EQ(caption.sampleAspect, (Ratio{64, 45}));
    const TuningOptions tuning = Parse({"tune", "--seed=4294967295", "--scale", "2", "a.bmp"}).tune.tuning;
    EXPECT_EQ(tuning.seed, UINT32_MAX);
    EXPECT_EQ(tuning.scale, TuningScale::twofold);
    EXPECT_EQ(Parse({"enhance", "--nonsense", "--help"}).command, Command::help);
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
    EXPECT_EQ(RefusalOf({"enhance", "--sharpness", "0", "--sharpness", "2", "a", "b"}), "");
    EXPECT_EQ(RefusalOf({"caption", "--frame", "1000", "--size", "8192x1", "--aspect", "1:64", "a"}), "");
}

}  // namespace
}  // namespace clarivex
