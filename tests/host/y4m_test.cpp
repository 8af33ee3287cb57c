// Y4M headers and frames, friendly and hostile.
#include "host/y4m.h"

#include <gtest/gtest.h>

#include "tests/host/error_of.h"
#include "tests/host/memory_stream.h"

namespace clarivex {
namespace {

std::string HeaderError(std::string_view line) {
    return ErrorOf([=] { ParseY4mHeader(line); });
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

TEST(Y4mHeader, EveryTagButTheSizeIsKept) {
    const Y4mHeader header = ParseY4mHeader("YUV4MPEG2 W352 H288 F25:1 Ib A12:11 C420jpeg XYSCSS=420JPEG Qnew");
    EXPECT_EQ(Y4mHeaderLine(header, {528, 432}, false),
              "YUV4MPEG2 W528 H432 F25:1 Ib A12:11 C420jpeg XYSCSS=420JPEG Qnew\n");
    EXPECT_EQ(Y4mHeaderLine(header, {528, 432}, true), "YUV4MPEG2 W528 H432 F25:1 Ib A12:11 C422 XYSCSS=422 Qnew\n");
    EXPECT_EQ(Y4mHeaderLine(ParseY4mHeader("YUV4MPEG2 W2 H2"), {3, 3}, true), "YUV4MPEG2 W3 H3 C422\n");
}

TEST(Y4mHeader, OnlyEightBitHalfChromaIsTaken) {
    for (const char* good : {"C420", "C420jpeg", "C420mpeg2", "C420paldv", "XYSCSS=420JPEG", "C420 XYSCSS=444"})
        EXPECT_EQ(HeaderError(std::string("YUV4MPEG2 W64 H64 ") + good), "") << good;
    for (const char* bad : {"C422", "C444", "C420p10", "Cmono", "C411", "C444alpha", "C", "XYSCSS=444"}) {
        const std::string error = HeaderError(std::string("YUV4MPEG2 W64 H64 ") + bad);
        EXPECT_NE(error.find(std::string("chroma format ") + bad + " is not supported"), std::string::npos) << error;
    }
}

TEST(Y4mHeader, AbsurdNumbersAndMissingPartsAreNamed) {
    for (const char* side : {"W0", "W8193", "W4294967360", "W-64", "W", "W6x4", "W99999999999999999999"})
        EXPECT_EQ(HeaderError(std::string("YUV4MPEG2 H64 ") + side),
                  std::string("header tag ") + side + ": the width must be 1 to 8192");
    for (const char* tag : {"F25", "F:", "F25:", "F-1:1", "F1:4294967296", "F1:3601", "F1000001:1", "A4", "A4:3:2"})
        EXPECT_NE(HeaderError(std::string("YUV4MPEG2 W64 H64 ") + tag), "") << tag;
    EXPECT_EQ(HeaderError("YUV4MPEG2 W64 H1000000"), "header tag H1000000: the height must be 1 to 8192");
    EXPECT_EQ(HeaderError("YUV4MPEG2 W8192 H8192 F4294967295:4294967295"), "");
    EXPECT_NE(HeaderError("YUV4MPEG2 H64").find("no width"), std::string::npos);
    EXPECT_NE(HeaderError("YUV4MPEG2 W64").find("no height"), std::string::npos);
    EXPECT_NE(HeaderError("YUV4MPEG2 W64 H64 C\x1b]0;x\x07").find("C?]0;x? is not"), std::string::npos);
    EXPECT_NE(HeaderError("YUV4MPEG22 W64 H64").find("not a Y4M"), std::string::npos);
}

TEST(Y4mReader, CountsFramesToTheEnd) {
    const std::string frame(6, 'a');
    const std::string stream = "YUV4MPEG2 W2 H2\nFRAME\n" + frame + "FRAME Ip XQ=1\n" + frame;
    MemorySource source(stream);
    Y4mReader reader(source);
    Y4mFrame got;
    EXPECT_EQ(reader.FramesIn(stream.size()), 2u);
    ASSERT_TRUE(reader.ReadFrame(got));
    EXPECT_EQ(got.parameters, "");
    ASSERT_TRUE(reader.ReadFrame(got));
    EXPECT_EQ(got.parameters, " Ip XQ=1");
    EXPECT_EQ(got.samples, std::vector<uint8_t>(6, 'a'));
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
    for (const auto& [stream, words] : cases) {
        const std::string error = ErrorOf([&] {
            MemorySource source(stream);
            Y4mReader reader(source);
            Y4mFrame frame;
            while (reader.ReadFrame(frame)) continue;
        });
        EXPECT_NE(error.find(words), std::string::npos) << error;
    }
}

}  // namespace
}  // namespace clarivex
