// Y4M headers and frames, friendly and hostile.
#include "host/y4m.h"

#include <gtest/gtest.h>

#include <numeric>

#include "host/studio_range.h"
#include "tests/host/error_of.h"
#include "tests/host/memory_stream.h"

namespace clarivex {
namespace {

std::string HeaderError(const std::string& tags) {
    return ErrorOf([&] { ParseY4mHeader("YUV4MPEG2 " + tags); });
}

TEST(Y4mHeader, ReadsSizeRateAndAspectWhichMayBeMissing) {
    const Y4mHeader header = ParseY4mHeader("YUV4MPEG2 W352 H288 F30000:1001 It A128:117 C420mpeg2 XCOLORRANGE=FULL");
    EXPECT_EQ(header.size, (PictureSize{352, 288}));
    EXPECT_EQ(header.frameRate, (Ratio{30000, 1001}));
    EXPECT_EQ(header.sampleAspect, (Ratio{128, 117}));
    for (const char* line : {"YUV4MPEG2  H3 W5", "YUV4MPEG2 W5 H3 F0:0 A0:0"}) {
        const Y4mHeader bare = ParseY4mHeader(line);
        EXPECT_EQ(bare.size, (PictureSize{5, 3}));
        EXPECT_FALSE(bare.frameRate.Known() || bare.sampleAspect.Known());
    }
}

TEST(Y4mHeader, TellsHowSamplesAreMeant) {
    using enum Interlacing;
    using enum ChromaSite;
    const std::tuple<const char*, Interlacing, ChromaSite, bool> cases[] = {
        {"Ip C420jpeg XCOLORRANGE=LIMITED", progressive, center, false},
        {"It C420mpeg2 XCOLORRANGE=FULL", topFieldFirst, left, true},
        {"Ib C420paldv XCOLORRANGE=", bottomFieldFirst, topLeft, false},
        {"Im C420", mixed, center, false},
        {"I? XSCALE=FULL XYSCSS=420MPEG2", progressive, left, false},
        {"C420paldv XYSCSS=420MPEG2", progressive, topLeft, false}};
    for (const auto& [tags, interlacing, site, full] : cases) {
        const Y4mHeader header = ParseY4mHeader("YUV4MPEG2 W2 H2 " + std::string(tags));
        EXPECT_EQ(std::tuple(tags, header.interlacing, header.chromaSite, header.range == ColourRange::full),
                  std::tuple(tags, interlacing, site, full));
        EXPECT_EQ(InterlacingWarning(header).find("bwdif") != std::string::npos, interlacing != progressive) << tags;
    }
}

TEST(Y4mHeader, EveryTagThatDoesNotChangeIsKept) {
    const std::tuple<std::string, Y4mChanges, std::string> cases[] = {
        {"W352 H288 F25:1 Ib A12:11 C420jpeg XYSCSS=420JPEG XCOLORRANGE=FULL XLENGTH=7 Qnew",
         {.size = {528, 432}},
         "W528 H432 F25:1 Ib A12:11 C420jpeg XYSCSS=420JPEG XCOLORRANGE=FULL XLENGTH=7 Qnew"},
        {"H288 W352 C420jpeg XYSCSS=420JPEG Qnew", {{528, 432}, true}, "H432 W528 C422 XYSCSS=422 Qnew"},
        {"W2 H2", {{3, 3}, true}, "W3 H3 C422"},
        {"W2 XLENGTH=7 H2 XLENGTHS=7", {{2, 2}, false, true}, "W2 H2 XLENGTHS=7"},
        {"W2 H2 XCOLORRANGE=FULL A0:0", {{2, 2}, false, false, true}, "W2 H2 XCOLORRANGE=LIMITED A0:0"}};
    for (const auto& [input, changes, output] : cases)
        EXPECT_EQ(Y4mHeaderLine(ParseY4mHeader("YUV4MPEG2 " + input), changes), "YUV4MPEG2 " + output + "\n");
}

TEST(Y4mHeader, OfANewStreamSaysWhatIsKnown) {
    EXPECT_EQ(Y4mHeaderLine({{3, 4}, {30, 1}, {}, ChromaSite::left, true}),
              "YUV4MPEG2 W3 H4 F30:1 Ip C422 XCOLORRANGE=LIMITED\n");
    for (const ChromaSite site : {ChromaSite::center, ChromaSite::left, ChromaSite::topLeft}) {
        const std::string line = Y4mHeaderLine({{528, 432}, {}, {12, 11}, site});
        EXPECT_EQ(ParseY4mHeader(line.substr(0, line.size() - 1)).chromaSite, site);
        EXPECT_TRUE(line.starts_with("YUV4MPEG2 W528 H432 Ip A12:11 C420"));
    }
}

TEST(Y4mHeader, OnlyEightBitHalfChromaIsTaken) {
    for (const char* good : {"C420", "C420jpeg", "C420mpeg2", "C420paldv", "XYSCSS=420JPEG", "C420 XYSCSS=444"})
        EXPECT_EQ(HeaderError(std::string("W64 H64 ") + good), "") << good;
    for (const std::string bad : {"C422", "C444", "C420p10", "Cmono", "C411", "C444alpha", "C", "XYSCSS=444"})
        EXPECT_TRUE(HeaderError("W64 H64 " + bad).starts_with("chroma format " + bad + " is not supported")) << bad;
}

TEST(Y4mHeader, AbsurdNumbersAndMissingPartsAreNamed) {
    for (const std::string side : {"W0", "W8193", "W4294967360", "W-64", "W", "W6x4", "W99999999999999999999"})
        EXPECT_EQ(HeaderError("H64 " + side), "header tag " + side + ": the width must be 1 to 8192");
    for (const std::string tag :
         {"F25", "F:", "F25:", "F-1:1", "F1:4294967296", "F1:3601", "F1000001:1", "A4", "A4:3:2"})
        EXPECT_TRUE(HeaderError("W64 H64 " + tag).starts_with("header tag " + tag)) << tag;
    EXPECT_EQ(HeaderError("W64 H1000000"), "header tag H1000000: the height must be 1 to 8192");
    EXPECT_EQ(HeaderError("W8192 H8192 F4294967295:4294967295"), "");
    EXPECT_TRUE(HeaderError("H64").starts_with("the Y4M header has no width"));
    EXPECT_TRUE(HeaderError("W64").starts_with("the Y4M header has no height"));
    EXPECT_TRUE(HeaderError("W64 H64 C\x1b]0;x\x07").starts_with("chroma format C?]0;x? is not"));
    ExpectError("not a Y4M", [] { ParseY4mHeader("YUV4MPEG22 W64 H64"); });
}

TEST(Y4mReader, CountsFramesToTheEnd) {
    const std::string frame(6, 'a');
    const std::string stream = "YUV4MPEG2 W2 H2\nFRAME\n" + frame + "FRAME Ip XQ=1\n" + frame;
    MemorySource source(stream);
    Y4mReader reader(source);
    Y4mFrame got;
    EXPECT_EQ(reader.FramesIn(stream.size()), 2u);
    for (const char* parameters : {"", " Ip XQ=1"}) {
        ASSERT_TRUE(reader.ReadFrame(got));
        EXPECT_EQ(got.parameters, parameters);
    }
    EXPECT_FALSE(reader.ReadFrame(got));
}

TEST(Y4mReader, CutsAndDamageAreToldWithTheirFrame) {
    const std::string begin = "YUV4MPEG2 W2 H2\nFRAME\nabcdef";
    const std::string damaged = "frame 1 does not begin", cut = "frame 1 is cut short: 6 bytes expected, 0 found";
    const std::string endless(longestY4mLine, 'X');
    const std::pair<std::string, std::string> cases[] = {
        {begin + "FRAME\nabc", "frame 1 is cut short: 6 bytes expected, 3 found"},
        {begin + "FRAME\n", cut},
        {begin + "FRA", cut},
        {begin + "FRAME Ip", cut},
        {begin + "x", damaged},
        {begin + "FRAMES\nabcdef", damaged},
        {begin + "\n", damaged},
        {begin + "FRAME " + endless + "\nabcdef", damaged},
        {"YUV4MPEG2 W2 H2", "no line end"},
        {"YUV4MPEG2 " + endless + " W2 H2\n", "no line end"}};
    for (const auto& [stream, words] : cases)
        ExpectError(words, [&text = stream] {
            MemorySource source(text);
            Y4mReader reader(source);
            Y4mFrame frame;
            while (reader.ReadFrame(frame)) continue;
        });
}

TEST(ToVideoRange, IsTheNearestLevelOfEveryLevel) {
    const PictureSize size{32, 32};
    std::vector<uint8_t> samples(size.PlanarBytes());
    std::iota(samples.begin(), samples.end(), uint8_t{0});
    ToVideoRange(PlanesIn<uint8_t>(size, samples));
    for (size_t i = 0; i < samples.size(); ++i) {
        const auto level = static_cast<double>(i % 256);
        ASSERT_NEAR(samples[i], i < 1024 ? 16 + 219 * level / 255 : 128 + 224 * (level - 128) / 255, 0.4999) << i;
    }
}

}  // namespace
}  // namespace clarivex
