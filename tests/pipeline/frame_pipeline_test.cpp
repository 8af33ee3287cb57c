#include "pipeline/frame_pipeline.h"

#include "tests/overlay/fake_fonts.h"
#include "tests/support/memory_count.h"
#include "tests/support/synthetic_video.h"
#include "tests/support/test.h"
#include "tests/support/test_images.h"

namespace clarivex {
namespace {

constexpr PixelFormat formats[] = {PixelFormat::yv12, PixelFormat::iyuv, PixelFormat::yuy2};

/// A process with one stream, fresh for each test.
struct Process {
    explicit Process(const KernelTable& kernels = scalarKernels, std::unique_ptr<FontEngine> fonts = nullptr)
        : pipeline(state, std::move(fonts), kernels) {}

    /// The next frame of a host that may call its format by another name.
    HRESULT Run(SyntheticVideo& video, std::optional<PixelFormat> called = {}) {
        video.NextFrame();
        FrameRequest request = video.request;
        request.format = called.value_or(request.format);
        const HRESULT result = pipeline.RunFrame(request, video.Output(), video.Input());
        video.request.newStream = video.request.settingsDirty = false;
        return result;
    }

    ProcessState state;
    FramePipeline pipeline;
};

/// A stream, and for some the digest of the visible samples of its first three frames in YV12.
struct Stream {
    int32_t width, height;
    bool scaled;
    float sharpness;
    bool lighting;
    uint32_t digest = 0;
};

// Pictures of 1024 rows are enlarged along their rows only, those of 2050 columns not at all; without sharpness the
// source is shown where the engine writes nothing.
constexpr Stream streams[] = {
    {33, 17, true, 1.0F, true},
    {50, 36, true, 0.5F, false, 0x64bd7a10},
    {61, 45, true, 2.0F, true, 0x8a807a96},
    {47, 29, true, 1.5F, false},
    {88, 40, true, 0.37F, true, 0xb9e3b55f},
    {700, 24, true, 1.2F, false},
    {64, 1024, true, 1.0F, true, 0x2624d738},
    {2050, 16, true, 0.8F, false, 0x89ebc601},
    {33, 17, false, 1.0F, false},
    {50, 36, false, 0.5F, true, 0xe03c26ce},
    {61, 45, false, 2.0F, false, 0x52f5acb7},
    {88, 40, false, 0.37F, false},
    {700, 24, false, 1.2F, true, 0x3a768ad4},
    {37, 19, true, 0.0F, true, 0x68b8937d},
    {38, 20, false, 0.0F, false},
};

struct Playing {
    Playing(const Stream& stream, PixelFormat format, const KernelTable& kernels = scalarKernels)
        : process(kernels), video(format, stream.width, stream.height, stream.scaled) {
        video.request.sharpness = stream.sharpness;
        video.request.enableLighting = stream.lighting;
    }

    const std::vector<uint8_t>& NextFrame() {
        EXPECT_EQ(process.Run(video, called), S_OK);
        return video.output;
    }

    Process process;
    SyntheticVideo video;
    std::optional<PixelFormat> called = {};
};

TEST(RunFrame, GivesTheSameBytesAtEveryWidthAndInBothPlanarFormats) {
    for (const Stream& stream : streams) {
        SCOPED_TRACE(&stream - streams);
        uint32_t digest = 0;
        for (const PixelFormat format : {PixelFormat::yv12, PixelFormat::yuy2}) {
            Playing scalar(stream, format);
            std::vector<std::unique_ptr<Playing>> others;
            ForEachRunnableTable([&](const KernelTable& kernels) {
                others.push_back(std::make_unique<Playing>(stream, format, kernels));
            });
            if (format == PixelFormat::yv12) {  // what a plane means only the host knows
                others.push_back(std::make_unique<Playing>(stream, format));
                others.back()->called = PixelFormat::iyuv;
            }
            for (int32_t frame = 0; frame < 3; ++frame) {
                const std::vector<uint8_t>& expected = scalar.NextFrame();
                if (format == PixelFormat::yv12) digest = scalar.video.Digest(digest);
                for (const auto& other : others)
                    ASSERT_EQ(other->NextFrame(), expected)
                        << "stream " << &other - others.data() << ", frame " << frame;
            }
        }
        EXPECT_EQ(stream.digest != 0 ? digest : 0, stream.digest);
    }
}

// But for rounding. Right of the picture the planes' rows go on in memory, and packed ones keep what the host had.
TEST(RunFrame, PackedLumaIsThatOfThePlanes) {
    for (const Stream& stream : streams) {
        if (stream.width > 2047 || (!stream.scaled && stream.sharpness == 0)) continue;  // packed is not written
        Playing planar(stream, PixelFormat::yv12), packed(stream, PixelFormat::yuy2);
        const FrameSize size = planar.video.OutputOf();
        const HostPicture planes(mediaSubtypeYv12, size.width, size.height);
        const HostPicture pairs(mediaSubtypeYuy2, size.width, size.height);
        const int32_t columns = stream.scaled ? stream.width * 3 / 2 - 8 : stream.width;
        const std::vector<uint8_t>&a = planar.NextFrame(), &b = packed.NextFrame();
        for (int32_t y = 0; y < (stream.height < 1022 ? size.height : stream.height); ++y)
            for (int32_t x = 0; x < columns; ++x)
                ASSERT_NEAR(a[planes.PlaceOf(0, x, y)], b[pairs.PlaceOf(0, x, y)], 1)
                    << "stream " << &stream - streams << ": " << x << ", " << y;
    }
}

struct StreamSize {
    int32_t width, height;
    bool scaled;
};

/// The output of the 73rd frame of a process, with the caption in it, the two before it those of another stream, if one
/// is given.
std::vector<uint8_t> LateFrame(const StreamSize& size, PixelFormat format, const StreamSize* before, bool newStream,
                               const KernelTable& kernels = scalarKernels, bool captioned = true) {
    Process process(kernels, captioned ? std::make_unique<FakeFontEngine>() : nullptr);
    for (int32_t frame = before != nullptr ? 2 : 0; frame < 72; ++frame) {
        process.state.AdvanceNoise();
        process.state.AdvanceCaption();
    }
    const auto play = [&](const StreamSize& of, bool begins) {
        SyntheticVideo video(format, of.width, of.height, of.scaled);
        video.request.newStream = begins;
        video.request.enableLighting = false;
        EXPECT_EQ(process.Run(video), S_OK);
        return video.output;
    };
    for (int32_t frame = 0; frame < (before != nullptr ? 2 : 0); ++frame) play(*before, false);
    return play(size, newStream);
}

TEST(RunFrame, BlendsTheCaptionIntoTheLowestRowsOnlyAndTheSameAtEveryWidth) {
    constexpr StreamSize size{96, 120, true};  // 144 by 180 when it is enlarged
    for (const PixelFormat format : formats) {
        const std::vector<uint8_t> captioned = LateFrame(size, format, nullptr, false);
        const std::vector<uint8_t> plain = LateFrame(size, format, nullptr, false, scalarKernels, false);
        const int32_t stride = format == PixelFormat::yuy2 ? 288 : 144;
        EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + 150 * stride, captioned.begin()));
        EXPECT_FALSE(
            std::equal(plain.begin() + 150 * stride, plain.begin() + 180 * stride, captioned.begin() + 150 * stride));
        ForEachRunnableTable([&](const KernelTable& kernels) {
            EXPECT_EQ(LateFrame(size, format, nullptr, false, kernels), captioned) << kernels.name;
        });
    }
}

TEST(RunFrame, KeepsNothingOfWhatTheStreamWasBefore) {
    const std::pair<StreamSize, StreamSize> changes[] = {
        {{240, 240, true}, {640, 240, true}}, {{88, 120, true}, {88, 130, true}}, {{130, 120, true}, {88, 120, true}},
        {{43, 92, true}, {64, 138, false}},   {{64, 138, false}, {43, 92, true}}, {{61, 145, true}, {61, 145, false}},
    };
    for (const auto& [before, now] : changes)
        for (const PixelFormat format : {PixelFormat::yv12, PixelFormat::yuy2})
            for (const bool newStream : {false, true})
                EXPECT_EQ(LateFrame(now, format, &before, newStream), LateFrame(now, format, nullptr, newStream))
                    << before.width << " x " << before.height << " to " << now.width << " x " << now.height
                    << ", format " << static_cast<int>(format) << (newStream ? ", new stream" : "");
}

// Rows go to the output while others are still to be read, unless they would be written over.
TEST(RunFrame, GivesTheSamePictureWhereOneBufferHoldsSourceAndTarget) {
    for (const Stream& stream : streams)
        for (const PixelFormat format : {PixelFormat::yv12, PixelFormat::yuy2}) {
            if (!stream.scaled && stream.width % 4 != 0) continue;  // chroma kernels take no odd width in place
            Playing apart(stream, format), together(stream, format);
            apart.NextFrame();
            SyntheticVideo& video = together.video;
            video.NextFrame();
            std::copy(video.input.begin(), video.input.end(), video.output.begin());
            const InputBuffer same{video.output.data(), video.input.size()};
            EXPECT_EQ(together.process.pipeline.RunFrame(video.request, video.Output(), same), S_OK);
            EXPECT_EQ(video.Digest(0), apart.video.Digest(0)) << &stream - streams;
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

// Planes show the source over black where a picture is too large, whatever the buffer held; all else stays as it was.
TEST(RunFrame, LeavesPicturesAloneThatAreTooSmallOrTooLarge) {
    for (const FrameSize& size : {FrameSize{31, 100}, {40, 7}, {1440, 860}})
        for (const PixelFormat format : formats) {
            Process process;
            SyntheticVideo video(format, size.width, size.height, true);
            video.request.enableLighting = false;
            video.NextFrame();
            const std::vector<uint8_t> shown = video.output, before(video.output.size(), 0xA5);
            const bool shows = size.width > 1000 && format != PixelFormat::yuy2;
            video.output = before;
            EXPECT_EQ(process.pipeline.RunFrame(video.request, video.Output(), video.Input()), S_OK);
            EXPECT_TRUE(video.output == (shows ? shown : before)) << size.width << " x " << size.height;
        }
}

// The arithmetic is local, and the noise is the same again after 256 rows and columns, which are 512 thirds of them.
TEST(RunFrame, WithLiftedLimitsAPartOfALargePictureIsWhatThatPartComesToAlone) {
    constexpr int32_t left = 1536, top = 512, border = 24;
    for (const PixelFormat format : {PixelFormat::yv12, PixelFormat::yuy2})
        for (const bool scaled : {true, false}) {
            Process whole, alone;
            SyntheticVideo large(format, 2100, 1100, scaled), part(format, 2100 - left, 1100 - top, scaled);
            large.request.enableLighting = part.request.enableLighting = false;
            large.request.liftSizeLimits = true;
            part.left = left;
            part.top = top;
            ASSERT_EQ(std::pair(whole.Run(large), alone.Run(part)), std::pair(S_OK, S_OK));
            const auto& [width, height] = part.OutputOf();
            const GUID& subtype = format == PixelFormat::yuy2 ? mediaSubtypeYuy2 : mediaSubtypeYv12;
            const HostPicture in(subtype, large.OutputOf().width, large.OutputOf().height), own(subtype, width, height);
            for (int32_t plane = 0; plane < (own.packed ? 1 : 3); ++plane)
                for (int32_t y = border, half = plane == 0 ? 1 : 2; y < height / half; ++y) {
                    const int32_t x = (scaled ? left * 3 / 2 : left) / half, rows = (scaled ? top * 3 / 2 : top) / half;
                    const uint8_t* expected = &part.output[own.PlaceOf(plane, border, y)];
                    const int32_t bytes = (width / half - 2 * border) * (own.packed ? 2 : 1);
                    ASSERT_TRUE(
                        std::equal(expected, expected + bytes, &large.output[in.PlaceOf(plane, x + border, rows + y)]))
                        << "plane " << plane << ", row " << y << ", packed " << own.packed << ", scaled " << scaled;
                }
        }
}

}  // namespace
}  // namespace clarivex
