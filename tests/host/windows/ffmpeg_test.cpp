// What ffmpeg.exe tells, and what it is told.
#include "host/windows/ffmpeg_arguments.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr const char* words = R"(Input #0, matroska,webm, from 'file:film.mkv':
  Metadata:
    title           : Stream #0:7: Video: h264
  Duration: 01:00:02.50, start: 0.000000, bitrate: 242 kb/s
  Stream #0:0: Video: mjpeg (Baseline), yuvj420p(pc), 64x64, 90k tbr (attached pic)
  Stream #0:1[0x1](und): Video: hevc (Main 10), yuv420p10le(tv), 160x120 [SAR 1:1 DAR 4:3], 25 fps, 1k tbn
    Side data:
      displaymatrix: rotation of -90.00 degrees
  Stream #0:2(ger): Audio: aac (LC), 44100 Hz, mono, fltp
  Stream #0:3: Subtitle: subrip
Stream mapping:
  Stream #0:1 -> #0:0 (hevc (native) -> wrapped_avframe (native))
[Parsed_showinfo_0 @ 0x1] config in time_base: 1/1000, frame_rate: 25/1
[Parsed_showinfo_0 @ 0x1] n:   0 pts:     23 pts_time:0.023   pos:      745 fmt:yuv420p10le sar:1/1 s:120x160 i:T iskey:1
[Parsed_showinfo_0 @ 0x1] color_range:tv color_space:bt2020nc color_primaries:bt2020 color_trc:arib-std-b67
Output #0, null, to 'pipe:':
  Stream #0:0: Video: wrapped_avframe
)";

TEST(FilmFacts, AreReadFromTheWordsOfFfmpeg) {
    using enum FilmStream::Kind;
    const FilmFacts facts = ReadFilmFacts(words);
    EXPECT_EQ(facts.streams,
              (std::vector<FilmStream>{
                  {0, cover, "mjpeg"}, {1, pictures, "hevc"}, {2, sound, "aac"}, {3, subtitle, "subrip"}}));
    EXPECT_EQ(PicturesOf(facts)->index, 1);
    EXPECT_EQ(facts.seconds, 3602.5);
    EXPECT_TRUE(facts.isTurned);
    ASSERT_TRUE(facts.picture);
    EXPECT_EQ(facts.picture->size, (PictureSize{120, 160}));
    EXPECT_EQ(facts.picture->codedLines, 120);
    EXPECT_EQ(facts.picture->seconds, 0.023);
    EXPECT_TRUE(facts.picture->isInterlaced);
    EXPECT_EQ(facts.picture->colour, (VideoColour{9, 18, 9}));
    EXPECT_FALSE(ReadFilmFacts("Stream #0:\nStream #0:1: \nDuration: N/A\nParsed_showinfo s:x fmt:").picture);
}

TEST(FfmpegArguments, AreTheUsualOnesUnlessAPersonSaysOtherwise) {
    const auto valueOf = [](const FilmOptions& options, const std::string& name) {
        FilmTarget target;
        target.options = options;
        const FfmpegArguments arguments = WriteArguments(target, {}, {"matroska", "libx264", "crf"}, "part");
        const auto found = std::find(arguments.begin(), arguments.end(), "-" + name + ":v:0");
        return found == arguments.end() ? "" : *(found + 1);
    };
    FilmOptions own;
    own.quality = 20.5;
    own.encoderOptions = "preset=slow:x264-params=keyint=5\\:bframes=0";
    EXPECT_EQ(valueOf({}, "crf"), "18");
    EXPECT_EQ(valueOf({}, "preset"), "medium");
    EXPECT_EQ(valueOf(own, "crf"), "20.5");
    EXPECT_EQ(valueOf(own, "preset"), "slow");
    EXPECT_EQ(valueOf(own, "x264-params"), "keyint=5:bframes=0");
}

TEST(FfmpegFailures, AreToldByTheLastThatWasSaid) {
    EXPECT_EQ(FailureText(1, "first\nframe=3\n[h264 @ 01] a\n\n[x] b\r\nError -- \nConversion failed!\n"),
              "ffmpeg.exe failed: a; b; Error");
    EXPECT_EQ(FailureText(3, "frame=3\n"), "ffmpeg.exe failed with exit code 3 and said nothing");
}

}  // namespace
}  // namespace clarivex
