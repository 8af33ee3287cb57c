#include "pipeline/frame_pipeline.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "tests/overlay/fake_fonts.h"
#include "tests/support/memory_count.h"
#include "tests/support/synthetic_video.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr PixelFormat formats[] = {PixelFormat::yv12, PixelFormat::iyuv, PixelFormat::yuy2};

/// A process with one stream, fresh for each test.
struct Process {
    explicit Process(const KernelTable& kernels = scalarKernels, std::unique_ptr<FontEngine> fonts = nullptr)
        : pipeline(state, std::move(fonts), kernels) {}

    HRESULT Run(SyntheticVideo& video) {
        video.NextFrame();
        const HRESULT result = pipeline.RunFrame(video.request, video.Output(), video.Input());
        video.request.newStream = video.request.settingsDirty = false;
        return result;
    }

    ProcessState state;
    FramePipeline pipeline;
};

/// Three frames of a stream and the digest of its visible samples, for YV12, IYUV and YUY2.
struct Stream {
    int32_t width, height;
    bool scaled;
    float sharpness;
    bool lighting;
    uint32_t digests[3];
};

// clang-format off
// Pictures of 1024 rows are enlarged along their rows only, those of 2050 columns not at all; without sharpness the
// source is shown where the engine writes nothing.
constexpr Stream streams[] = {
    {  33,   17, true,   1.0F, true,  {0xa0fb4420, 0x150e2ebe, 0x556db497}},
    {  50,   36, true,   0.5F, false, {0x64bd7a10, 0xefbc54a1, 0xa6ece739}},
    {  61,   45, true,   2.0F, true,  {0x8a807a96, 0xe0d59357, 0x20166e5c}},
    {  47,   29, true,   1.5F, false, {0x11d8bfac, 0xaac44524, 0xde583b4c}},
    {  88,   40, true,  0.37F, true,  {0xb9e3b55f, 0x6327d4bf, 0xebd28e2e}},
    { 700,   24, true,   1.2F, false, {0x3afe871e, 0xcbd96b7d, 0xa4097a94}},
    {  64, 1024, true,   1.0F, true,  {0x2624d738, 0xc499f226, 0x23451e66}},
    {2050,   16, true,   0.8F, false, {0x89ebc601, 0x89ebc601, 0x6b3c3c36}},
    {  33,   17, false,  1.0F, false, {0xe768aaca, 0x3e37fa36, 0xe9b78dbc}},
    {  50,   36, false,  0.5F, true,  {0xe03c26ce, 0x7f584efd, 0x3dbf713d}},
    {  61,   45, false,  2.0F, false, {0x52f5acb7, 0x9519c61e, 0x7030ddf4}},
    {  47,   29, false,  1.5F, true,  {0x8800dbb8, 0xe79a9d18, 0x7245f0e6}},
    {  88,   40, false, 0.37F, false, {0xfdbc5c77, 0xfdbc5c77, 0x4a2e3c8f}},
    { 700,   24, false,  1.2F, true,  {0x3a768ad4, 0x90523e12, 0x95689bd2}},
    {  64, 1024, false,  1.0F, false, {0xbccbb718, 0xbccbb718, 0xb278fb55}},
    {2050,   16, false,  0.8F, true,  {0x57420eb6, 0xc658de49, 0x5270eb4c}},
    {  37,   19, true,   0.0F, true,  {0x68b8937d, 0xb10e1bad, 0xad813312}},
    {  37,   19, false,  0.0F, true,  {0xb3c36a73, 0x347573f6, 0xe570a836}},
    {  38,   20, false,  0.0F, false, {0xce58724f, 0xce58724f, 0x8320ae76}},
};
// clang-format on

uint32_t DigestOf(const Stream& stream, PixelFormat format, const KernelTable& kernels) {
    Process process(kernels);
    SyntheticVideo video(format, stream.width, stream.height, stream.scaled);
    video.request.sharpness = stream.sharpness;
    video.request.enableLighting = stream.lighting;
    uint32_t digest = 0;
    for (int32_t frame = 0; frame < 3; ++frame) {
        EXPECT_EQ(process.Run(video), S_OK);
        digest = video.Digest(digest);
    }
    return digest;
}

TEST(RunFrame, GivesTheSameBytesOnEverySystemAndAtEveryWidth) {
    ForEachRunnableTable([](const KernelTable& kernels) {
        for (const Stream& stream : streams)
            for (size_t format = 0; format < std::size(formats); ++format)
                EXPECT_EQ(DigestOf(stream, formats[format], kernels), stream.digests[format])
                    << kernels.name << ", format " << format << ", " << stream.width << " x " << stream.height
                    << (stream.scaled ? ", scaled" : "");
    });
}

/// Rows of the output, 3/2 of 96 × 120, that differ with the caption in its 73rd frame.
std::vector<int32_t> RowsUnderCaption(PixelFormat format, const KernelTable& kernels, uint32_t& digest) {
    Process plain(kernels), captioned(kernels, std::make_unique<FakeFontEngine>());
    SyntheticVideo expected(format, 96, 120, true), video(format, 96, 120, true);
    for (int32_t frame = 0; frame < 73; ++frame) {
        plain.Run(expected);
        captioned.Run(video);
    }
    digest = video.Digest(0);
    std::vector<int32_t> rows;
    const int32_t stride = format == PixelFormat::yuy2 ? 288 : 144;
    for (int32_t y = 0; y < 180; ++y)
        if (!std::equal(&video.output[y * stride], &video.output[y * stride] + stride, &expected.output[y * stride])) {
            EXPECT_NE(captioned.pipeline.Stream().overlay.Tiles().Row(y), nullptr) << y;
            rows.push_back(y);
        }
    return rows;
}

TEST(RunFrame, BlendsTheCaptionIntoItsRowsAndNoOthers) {
    for (const PixelFormat format : formats) {
        uint32_t expected = 0;
        const std::vector<int32_t> rows = RowsUnderCaption(format, scalarKernels, expected);
        ASSERT_FALSE(rows.empty());
        EXPECT_GT(rows.front(), 150);
        ForEachRunnableTable([&](const KernelTable& kernels) {
            uint32_t digest = 0;
            EXPECT_EQ(RowsUnderCaption(format, kernels, digest), rows) << kernels.name;
            EXPECT_EQ(digest, expected) << kernels.name << ", format " << static_cast<int>(format);
        });
    }
}

TEST(RunFrame, AllocatesNothingFromTheSecondFrameOn) {
    for (const PixelFormat format : formats)
        for (const bool scaled : {false, true}) {
            Process process;
            NoiseReductionSettings& noise = process.pipeline.Stream().settings.noise;
            noise.noiseReduction = scaled ? 3.0F : 0.0F;
            noise.noiseStagesH = noise.noiseStagesV = 2;
            SyntheticVideo video(format, 61, 45, scaled);
            process.Run(video);
            const MemoryCount memory;
            for (int32_t frame = 0; frame < 5; ++frame) process.Run(video);
            video.request.sharpness = 1.7F;
            video.request.settingsDirty = true;
            process.Run(video);
            EXPECT_EQ(MemoryCount::Attempts(), 0) << static_cast<int>(format) << ", scaled " << scaled;
        }
}

struct StreamSize {
    int32_t width, height;
    bool scaled;
};

/// A picture as it comes out when the stream has been another one for 72 frames, or none: noise and caption have run on.
std::vector<uint8_t> After(const StreamSize* before, const StreamSize& size, PixelFormat format, bool newStream) {
    Process process(scalarKernels, std::make_unique<FakeFontEngine>());
    SyntheticVideo video(format, size.width, size.height, size.scaled);
    if (before != nullptr) {
        SyntheticVideo first(format, before->width, before->height, before->scaled);
        first.request.enableLighting = false;
        for (int32_t frame = 0; frame < 72; ++frame) process.Run(first);
        video.request.newStream = newStream;
    } else {
        for (int32_t frame = 0; frame < 72; ++frame) process.state.AdvanceNoise();
        for (int32_t frame = 0; frame < (newStream ? 0 : 72); ++frame) process.state.AdvanceCaption();
        video.request.newStream = newStream;
    }
    video.request.enableLighting = video.request.settingsDirty = false;
    EXPECT_EQ(process.Run(video), S_OK);
    return video.output;
}

TEST(RunFrame, KeepsNothingOfWhatTheStreamWasBefore) {
    const std::pair<StreamSize, StreamSize> changes[] = {
        {{240, 240, true}, {640, 240, true}}, {{88, 120, true}, {88, 130, true}}, {{130, 120, true}, {88, 120, true}},
        {{43, 92, true}, {64, 138, false}},   {{64, 138, false}, {43, 92, true}}, {{61, 145, true}, {61, 145, false}},
    };
    for (const auto& [before, now] : changes)
        for (const PixelFormat format : formats)
            for (const bool newStream : {false, true})
                EXPECT_EQ(After(&before, now, format, newStream), After(nullptr, now, format, newStream))
                    << before.width << " x " << before.height << " to " << now.width << " x " << now.height
                    << ", format " << static_cast<int>(format) << (newStream ? ", new stream" : "");
}

TEST(RunFrame, StreamsOfAProcessShareItsNoiseItsCaptionAndItsFirstLighting) {
    ProcessState process;
    FramePipeline pipelines[] = {{process, nullptr, scalarKernels}, {process, nullptr, scalarKernels}};
    SyntheticVideo videos[] = {{PixelFormat::yv12, 88, 40, true}, {PixelFormat::yuy2, 64, 48, false}};
    NoiseGenerator noise;
    const auto run = [&](size_t i) {
        videos[i].NextFrame();
        EXPECT_EQ(pipelines[i].RunFrame(videos[i].request, videos[i].Output(), videos[i].Input()), S_OK);
        videos[i].request.newStream = false;
        const NoiseOffsets expected = noise.Advance(), taken = pipelines[i].Stream().noise.offsets;
        EXPECT_EQ(taken.x, expected.x);
        EXPECT_EQ(taken.y, expected.y);
        return pipelines[i].Stream().engine.lighting.trackedBlack;
    };
    const float adopted = run(0), tracked = run(1);
    EXPECT_GT(adopted, 20.0F);  // darkest samples of the video are about 30
    EXPECT_LT(tracked, 20.0F);
    for (const size_t i : {0, 0, 1, 0}) run(i);
    EXPECT_EQ(process.AdvanceCaption(), 1 + 5);  // the second stream began it anew
    process.ShowCaption(false);
    EXPECT_EQ(process.AdvanceCaption(), captionHidden);
    process.ShowCaption(true);
    EXPECT_EQ(process.AdvanceCaption(), 7);
}

TEST(RunFrame, LeavesTheOutputOfTooSmallPicturesAlone) {
    for (const auto& [width, height] : {std::pair{31, 100}, {40, 7}}) {
        Process process;
        SyntheticVideo video(PixelFormat::yv12, width, height, true);
        const std::vector<uint8_t> before(video.output.size(), 0xA5);
        video.output = before;
        EXPECT_EQ(process.pipeline.RunFrame(video.request, video.Output(), video.Input()), S_OK);
        EXPECT_EQ(video.output, before);
    }
}

}  // namespace
}  // namespace clarivex
