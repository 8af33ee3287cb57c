// The C interface: the plug-in's bytes from planes of any shape, contexts that know nothing of each other, and errors in
// place of everything else.

#include "overlay/font_engine.h"
#include "pipeline/cpu_speed.h"
#include "pipeline/frame_pipeline.h"
#include "pipeline/runnable_sets.h"
#include "runtime/version.h"
#include "tests/library/library_stream.h"
#include "tests/support/short_memory.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr int32_t allFormats[] = {CVX_FORMAT_I420, CVX_FORMAT_YV12, CVX_FORMAT_NV12, CVX_FORMAT_YUY2};

std::string NameOf(const PictureKind& kind) {
    return "format " + std::to_string(kind.format) + ", " + std::to_string(kind.size.width) + " x " +
           std::to_string(kind.size.height);
}

/// The plug-in's frame path over buffers as the media object has them, with the process's state of its own, beside a
/// context that gets the same samples.
class Beside {
public:
    Beside(const PictureKind& kind, const cvx_settings& settings)
        : video(kind.format == CVX_FORMAT_YUY2   ? PixelFormat::yuy2
                : kind.format == CVX_FORMAT_I420 ? PixelFormat::iyuv
                                                 : PixelFormat::yv12,
                kind.size.width, kind.size.height, settings.mode == CVX_MODE_ALWAYS),
          pipeline(process, MakeSystemFontEngine(), *RunnableKernels("auto")),
          context(MakeContext(kind, settings)),
          source(kind),
          target(TargetOf(*context, kind.format)) {
        Change(settings);
    }

    void Change(const cvx_settings& settings) {
        process.ShowCaption(settings.caption != 0);
        video.request.sharpness = settings.sharpness;
        video.request.settingsDirty = true;
        video.request.enableLighting = settings.lighting != 0;
        video.request.liftSizeLimits = settings.limits == CVX_LIMITS_LIFTED;
        EXPECT_EQ(CVX_OK, cvx_set_settings(context.get(), &settings));
    }

    void PlayOne() {
        video.NextFrame();
        source.ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t& byte) {
            byte = video.input[PlaceOf(source.kind, plane, x, y)];
        });
        std::vector<uint8_t> joined = video.output;
        ASSERT_EQ(S_OK, pipeline.RunFrame(video.request, video.Output(), video.Input()));
        video.request.newStream = video.request.settingsDirty = false;
        const cvx_source planes = source.Source();
        ASSERT_EQ(CVX_OK, cvx_process(context.get(), &planes, &target.target, 0));
        WriteTo(joined);
        ASSERT_TRUE(joined == video.output) << NameOf(source.kind);
    }

private:
    static HostPicture PictureOf(const PictureKind& kind) {
        const bool packed = kind.format == CVX_FORMAT_YUY2;
        return {packed ? mediaSubtypeYuy2 : mediaSubtypeYv12, kind.size.width, kind.size.height};
    }
    /// Where a byte of a plane stands in the media object's buffer.
    static size_t PlaceOf(const PictureKind& kind, int32_t plane, int32_t x, int32_t y) {
        if (kind.format == CVX_FORMAT_YUY2) return static_cast<size_t>(PictureOf(kind).Stride() * y + x);
        return kind.format == CVX_FORMAT_NV12 && plane == 1 ? PictureOf(kind).PlaceOf(2 - x % 2, x / 2, y)
                                                            : PictureOf(kind).PlaceOf(plane, x, y);
    }
    /// As the media object writes: of odd sizes it shares bytes between rows and planes, where the later one wins, and
    /// leaves an odd last row.
    void WriteTo(std::vector<uint8_t>& buffer) const {
        const PictureKind& kind = target.kind;
        const bool leavesRow = !video.request.scalingOn && kind.size.height % 2 != 0;
        for (const int32_t odd : {1, 0})  // of pairs V, which stands first in the buffer
            target.ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t sample) {
                if (leavesRow && y == ShapeOf(kind, plane).rows - 1)
                    EXPECT_EQ(source.Row(plane, y)[x], sample) << NameOf(kind) << ", last row";
                else if (kind.format != CVX_FORMAT_NV12 || plane == 0 || x % 2 == odd)
                    buffer[PlaceOf(kind, plane, x, y)] = sample;
            });
    }

    SyntheticVideo video;
    ProcessState process;
    FramePipeline pipeline;
    OwnedContext context;
    GuardedPicture source, target;
};

TEST(Library, GivesThePluginsBytesInEveryFormatThroughChangesOfSettings) {
    const FrameSize sizes[] = {{64, 48}, {352, 288}, {65, 49},   {71, 35},   {66, 50},
                               {33, 17}, {40, 1030}, {2056, 24}, {1448, 864}};  // the last are beyond the limits
    for (const FrameSize& size : sizes)
        for (const int32_t format : allFormats)
            for (const int32_t mode : {CVX_MODE_NEVER, CVX_MODE_ALWAYS}) {
                cvx_settings settings = Defaults();
                settings.mode = mode;
                settings.padding = CVX_PADDING_KEEP;
                settings.limits = size.width > 1000 || size.height > 1000 ? CVX_LIMITS_PLUGIN : CVX_LIMITS_LIFTED;
                settings.caption = size.width % 2 == 0 ? 1 : 0;
                Beside both({size, format}, settings);
                for (const float sharpness : {1.0F, 1.0F, 0.0F, 0.004F, 2.0F}) {
                    settings.sharpness = sharpness;
                    settings.lighting = sharpness < 2.0F ? 1 : 0;
                    settings.instruction_set = sharpness < 1.0F ? CVX_INSTRUCTIONS_SCALAR : CVX_INSTRUCTIONS_AUTO;
                    both.Change(settings);
                    both.PlayOne();
                    if (HasFatalFailure()) return;
                    if (size.height > 800) break;
                }
            }
}

TEST(Library, GivesTheSameBytesFromAndToPlanesOfAnyShapeBetweenGuards) {
    for (int32_t width = 30; width < 80; ++width)
        for (const int32_t format : allFormats) {
            const PictureKind kind{{width, 16 + width * 7 % 11}, format};
            cvx_settings settings = Defaults();
            settings.mode = width % 3 == 0 ? CVX_MODE_NEVER : CVX_MODE_ALWAYS;
            settings.lighting = width / 8 % 2;
            const auto usual = Play(*MakeContext(kind, settings), kind, 0, 1);
            for (const MemoryShape& shape : {MemoryShape{true, 0, true}, {false, 5, false}, {true, 64, false}})
                ASSERT_TRUE(!usual.empty() && usual == Play(*MakeContext(kind, settings), kind, 0, 1, shape))
                    << NameOf(kind) << ", gap " << shape.gap;
        }
}

TEST(Library, GivesNv12AsYv12WithItsChromaInPairsOnEveryInstructionSet) {
    for (int32_t set = CVX_INSTRUCTIONS_AUTO; set <= CVX_INSTRUCTIONS_AVX512; ++set)
        for (int32_t width = 32; width < 300; width += width < 72 ? 1 : 31) {
            cvx_settings settings = Defaults();
            settings.instruction_set = set;
            const PictureKind planes{{width, 18}, CVX_FORMAT_YV12}, pairs{planes.size, CVX_FORMAT_NV12};
            const OwnedContext context = MakeContext(planes, settings), other = MakeContext(pairs, settings);
            if (context == nullptr) break;  // cannot run here
            GuardedPicture expected(TargetOf(*context, planes.format)), actual(TargetOf(*other, pairs.format));
            expected.Fill(Play(*context, planes, 0, 1));
            actual.Fill(Play(*other, pairs, 0, 1));
            actual.ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t sample) {
                EXPECT_EQ(plane == 0 ? expected.Row(0, y)[x] : expected.Row(2 - x % 2, y)[x / 2], sample)
                    << NameOf(pairs) << ", instructions " << set << ": " << x << ", " << y;
            });
        }
}

TEST(Library, CropsAndKeepsSizesAsPredicted) {
    struct Case {
        FrameSize source;
        int32_t mode, padding;
        FrameSize target;
    };
    constexpr Case cases[] = {{{65, 49}, CVX_MODE_ALWAYS, CVX_PADDING_KEEP, {104, 72}},
                              {{65, 49}, CVX_MODE_ALWAYS, CVX_PADDING_CROP, {96, 72}},
                              {{65, 49}, CVX_MODE_NEVER, CVX_PADDING_CROP, {65, 49}},
                              {{31, 64}, CVX_MODE_ALWAYS, CVX_PADDING_KEEP, {31, 64}},
                              {{8192, 8192}, CVX_MODE_ALWAYS, CVX_PADDING_CROP, {12288, 12288}}};
    for (const Case& known : cases) {
        cvx_settings settings = Defaults();
        settings.mode = known.mode;
        settings.padding = known.padding;
        FrameSize size;
        EXPECT_EQ(CVX_OK, cvx_predict_output_size(known.source.width, known.source.height, &settings, &size.width,
                                                  &size.height));
        EXPECT_EQ(known.target, size);
        EXPECT_EQ(known.target, TargetOf(*MakeContext({known.source, 0}, settings), 0).size);
    }
    for (const int32_t format : allFormats) {
        const PictureKind kind{{70, 30}, format};
        cvx_settings settings = Defaults();
        const OwnedContext cropping = MakeContext(kind, settings);
        settings.padding = CVX_PADDING_KEEP;
        const OwnedContext keeping = MakeContext(kind, settings);
        GuardedPicture left(TargetOf(*cropping, format)), whole(TargetOf(*keeping, format));
        left.Fill(Play(*cropping, kind, 0, 1));
        whole.Fill(Play(*keeping, kind, 0, 1));
        left.ForEachByte([&](int32_t plane, int32_t x, int32_t y, uint8_t sample) {
            EXPECT_EQ(whole.Row(plane, y)[x], sample) << NameOf(kind);
        });
    }
}

TEST(Library, EnlargesInAutomaticModeWhatTheProcessorIsFastEnoughFor) {
    const SpeedSources before = SetSpeedSources({.timeStamp = [] { return uint64_t{0}; },
                                                 .performanceCounter = [] { return int64_t{0}; },
                                                 .performanceFrequency = [] { return int64_t{1}; },
                                                 .sleep = [](uint32_t) {}});  // counts as 1 GHz
    cvx_settings settings = Defaults();
    settings.mode = CVX_MODE_AUTO;
    for (const auto& [width, enlarged] : {std::pair{400, 600}, {416, 416}}) {  // 163,203 samples
        FrameSize size;
        EXPECT_EQ(CVX_OK, cvx_predict_output_size(width, 400, &settings, &size.width, &size.height));
        EXPECT_EQ(enlarged, size.width);
    }
    SetSpeedSources(before);
}

TEST(Library, LeavesOutNoiseAndMindsThePixelsShape) {
    const PictureKind kind{{64, 48}, CVX_FORMAT_I420};
    cvx_settings settings = Defaults();
    settings.mode = CVX_MODE_NEVER;
    settings.sharpness = 0;
    settings.lighting = settings.noise = 0;
    GuardedPicture source(kind);
    source.Draw(0);
    EXPECT_EQ(source.Samples(), Play(*MakeContext(kind, settings), kind, 0, 1));
    settings.noise = 1;
    EXPECT_NE(source.Samples(), Play(*MakeContext(kind, settings), kind, 0, 1));
    const PictureKind large{{320, 240}, CVX_FORMAT_YV12};
    settings.caption = 1;
    const auto square = Play(*MakeContext(large, settings), large, 0, 100);
    settings.pixel_aspect = 2;
    const bool drawn = MakeSystemFontEngine()->MakeFont({}) != nullptr;
    EXPECT_EQ(drawn, square != Play(*MakeContext(large, settings), large, 0, 100));
}

TEST(Library, ResetGivesWhatANewContextGives) {
    const PictureKind kind{{96, 64}, CVX_FORMAT_NV12};
    cvx_settings settings = Defaults();
    settings.caption = 1;
    const OwnedContext context = MakeContext(kind, settings);
    const auto fresh = Play(*context, kind, 0, 40);
    EXPECT_NE(fresh, Play(*context, kind, 0, 40)) << "a stream goes on";
    EXPECT_EQ(CVX_OK, cvx_reset(context.get()));
    EXPECT_EQ(fresh, Play(*context, kind, 0, 40));
}

TEST(Library, ContextsOnThreadsGiveWhatTheyGiveOneAfterTheOther) {
    constexpr int32_t frames = 12;
    const auto kindOf = [](size_t i) { return PictureKind{{static_cast<int32_t>(96 + 7 * i), 64}, allFormats[i % 4]}; };
    cvx_settings settings = Defaults();
    settings.caption = 1;
    for (const size_t count : {2, 8}) {
        std::vector<std::vector<uint8_t>> alone(count), together(count);
        for (size_t i = 0; i < count; ++i) alone[i] = Play(*MakeContext(kindOf(i), settings), kindOf(i), 0, frames);
        std::vector<std::thread> threads;
        for (size_t i = 0; i < count; ++i)
            threads.emplace_back(
                [&, i] { together[i] = Play(*MakeContext(kindOf(i), settings), kindOf(i), 0, frames); });
        for (std::thread& thread : threads) thread.join();
        EXPECT_TRUE(alone == together) << count << " threads";
    }
}

TEST(Library, RefusesSettingsSizesAndFormatsThatAreNone) {
    const PictureKind kind{{64, 48}, CVX_FORMAT_I420};
    const OwnedContext context = MakeContext(kind, Defaults()), other = MakeContext(kind, Defaults());
    const auto refuse = [&](cvx_result result, auto field, auto value) {
        cvx_settings settings = Defaults();
        settings.*field = value;
        cvx_context* made = context.get();
        EXPECT_EQ(result, cvx_create(64, 48, CVX_FORMAT_I420, &settings, &made));
        EXPECT_EQ(nullptr, made);
        EXPECT_EQ(result, cvx_set_settings(context.get(), &settings));
    };
    for (const uint32_t bytes : {0U, 39U, 41U}) refuse(CVX_ERROR_STRUCT_SIZE, &cvx_settings::struct_size, bytes);
    for (const float value : {std::numeric_limits<float>::quiet_NaN(), -0.001F, 64.01F}) {
        refuse(CVX_ERROR_SHARPNESS, &cvx_settings::sharpness, value);
        refuse(CVX_ERROR_PIXEL_ASPECT, &cvx_settings::pixel_aspect, value);
    }
    refuse(CVX_ERROR_SHARPNESS, &cvx_settings::sharpness, 2.001F);
    constexpr std::pair<int32_t cvx_settings::*, int32_t> choices[] = {
        {&cvx_settings::lighting, 2},       {&cvx_settings::noise, 2},  {&cvx_settings::caption, 2},
        {&cvx_settings::mode, 3},           {&cvx_settings::limits, 2}, {&cvx_settings::padding, 2},
        {&cvx_settings::instruction_set, 5}};
    for (const auto& [choice, end] : choices)
        for (const int32_t value : {end, -1, INT32_MIN}) refuse(CVX_ERROR_SETTING, choice, value);
    EXPECT_EQ(Play(*other, kind, 0, 2), Play(*context, kind, 0, 2)) << "nothing was changed";
    for (const FrameSize& size :
         {FrameSize{15, 64}, {64, 15}, {8193, 64}, {64, 8193}, {-64, 64}, {INT32_MAX, INT32_MAX}})
        EXPECT_EQ(nullptr, MakeContext({size, 0}, Defaults()));
    for (const int32_t format : {-1, 4, INT32_MAX}) EXPECT_EQ(nullptr, MakeContext({{64, 64}, format}, Defaults()));
    cvx_settings settings;
    EXPECT_EQ(CVX_ERROR_NULL, cvx_settings_init(nullptr, sizeof settings));
    EXPECT_EQ(CVX_ERROR_STRUCT_SIZE, cvx_settings_init(&settings, sizeof settings - 4));
    EXPECT_EQ(CVX_ERROR_NULL, cvx_create(64, 64, 0, nullptr, nullptr));
    for (const cvx_result result :
         {cvx_reset(nullptr), cvx_set_settings(nullptr, nullptr), cvx_output_size(context.get(), nullptr, nullptr),
          cvx_predict_output_size(64, 64, nullptr, nullptr, nullptr)})
        EXPECT_EQ(CVX_ERROR_NULL, result);
    cvx_destroy(nullptr);
    std::set<std::string> texts;
    for (cvx_result result = CVX_OK; result >= CVX_ERROR_MEMORY - 1; --result) texts.insert(cvx_error_text(result));
    EXPECT_EQ(13U, texts.size());
    EXPECT_STREQ("unknown result", cvx_error_text(1));
    EXPECT_EQ(CVX_VERSION, cvx_version());
    EXPECT_STREQ(versionText, cvx_version_text());
}

TEST(Library, RefusesPlanesThatCannotBeAndLeavesTheTargetAsItWas) {
    struct Case {
        cvx_result result;
        void (*spoil)(cvx_source& source, cvx_target& target);
    };
    const Case cases[] = {
        {CVX_ERROR_NULL, [](auto& s, auto&) { s.plane[0] = nullptr; }},
        {CVX_ERROR_NULL, [](auto&, auto& t) { t.plane[2] = nullptr; }},
        {CVX_ERROR_STRIDE, [](auto& s, auto&) { s.stride[0] = 63; }},
        {CVX_ERROR_STRIDE, [](auto& s, auto&) { s.stride[1] = -31; }},
        {CVX_ERROR_STRIDE, [](auto&, auto& t) { t.stride[0] = 0; }},
        {CVX_ERROR_STRIDE, [](auto&, auto& t) { t.stride[2] = PTRDIFF_MIN; }},
        {CVX_ERROR_STRIDE, [](auto& s, auto&) { s.stride[0] = PTRDIFF_MAX; }},
        {CVX_ERROR_STRIDE, [](auto& s, auto&) { s.plane[0] = reinterpret_cast<uint8_t*>(UINTPTR_MAX - 3000); }},
        {CVX_ERROR_STRIDE,
         [](auto& s, auto&) {
             s = {{(uint8_t*)64, s.plane[1], s.plane[2]}, {-64, 32, 32}};
         }},
        {CVX_ERROR_OVERLAP, [](auto& s, auto& t) { s.plane[0] = t.plane[0]; }},
        {CVX_ERROR_OVERLAP, [](auto& s, auto& t) { s.plane[2] = t.plane[1] + 96 / 2 * 36 - 1; }},
        {CVX_ERROR_OVERLAP, [](auto&, auto& t) { t.plane[1] = t.plane[2] + 47; }},
        {CVX_ERROR_OVERLAP,
         [](auto&, auto& t) {
             t = {{t.plane[0], t.plane[0] + 95, t.plane[2]}, {96, 96, 48}};
         }},
    };
    const PictureKind kind{{64, 48}, CVX_FORMAT_I420};
    const OwnedContext context = MakeContext(kind, Defaults());
    GuardedPicture picture(kind), result(TargetOf(*context, kind.format));
    const auto before = result.Samples();
    for (const Case& bad : cases) {
        cvx_source source = picture.Source();
        cvx_target target = result.target;
        bad.spoil(source, target);
        EXPECT_EQ(bad.result, cvx_process(context.get(), &source, &target, 0)) << &bad - cases;
        EXPECT_EQ(before, result.Samples());
    }
    const cvx_source source = picture.Source();
    EXPECT_EQ(CVX_ERROR_NULL, cvx_process(nullptr, &source, &result.target, 0));
    EXPECT_EQ(CVX_ERROR_NULL, cvx_process(context.get(), nullptr, &result.target, 0));
    EXPECT_EQ(CVX_ERROR_NULL, cvx_process(context.get(), &source, nullptr, 0));
    EXPECT_EQ(Play(*MakeContext(kind, Defaults()), kind, 0, 1), Play(*context, kind, 0, 1)) << "nothing was changed";
    std::vector<uint8_t> side(96 * 72 + 256 * 36);
    const cvx_target beside{{&side[0], &side[96 * 72], &side[96 * 72 + 128]}, {96, 256, 256}};
    EXPECT_EQ(CVX_OK, cvx_process(context.get(), &source, &beside, 0)) << "chroma side by side";
}

TEST(Library, GivesUpOnMemoryAtOnceAndGoesOnWhenThereIsSome) {
    for (const int32_t format : {CVX_FORMAT_NV12, CVX_FORMAT_YUY2}) {
        const PictureKind kind{{70, 48}, format};
        cvx_settings settings = Defaults();
        settings.caption = 1;
        cvx_result created = CVX_ERROR_MEMORY, played = CVX_ERROR_MEMORY;
        cvx_context* context = nullptr;
        for (int32_t first = 0; created != CVX_OK; ++first) {
            const ShortMemory shortage(first, ShortMemory::forEver);
            created = cvx_create(70, 48, format, &settings, &context);
            ASSERT_TRUE((created == CVX_OK) == (context != nullptr) &&
                        (created == CVX_OK || created == CVX_ERROR_MEMORY));
        }
        cvx_destroy(context);
        const auto expected = Play(*MakeContext(kind, settings), kind, 0, 2);
        GuardedPicture source(kind), target(TargetOf(*MakeContext(kind, settings), format));
        const cvx_source planes = source.Source();
        for (int32_t first = 0; played != CVX_OK; first += first < 40 ? 1 : 13) {
            const OwnedContext used = MakeContext(kind, settings);
            {
                const ShortMemory shortage(first, ShortMemory::forEver);
                played = cvx_process(used.get(), &planes, &target.target, 0);
                ASSERT_TRUE(played == CVX_OK || (played == CVX_ERROR_MEMORY && cvx_reset(used.get()) == played));
            }
            EXPECT_EQ(CVX_OK, cvx_process(used.get(), &planes, &target.target, 0));
            if (first % 8 != 0) continue;
            EXPECT_EQ(CVX_OK, cvx_reset(used.get()));
            EXPECT_EQ(expected, Play(*used, kind, 0, 2));
        }
    }
}

}  // namespace
}  // namespace clarivex
