// The element against the library: what comes out is what cvx_process makes of the same samples, while formats, sizes,
// properties and the place in the film change under it; and the caps that it finds.
#include "tests/support/short_memory.h"  // declares what GLib has as macros, and so goes first

#include "gstreamer/element.h"

#include <clarivex/clarivex.h>
#include <gst/check/gstharness.h>
#include <gst/controller/controller.h>
#include <gst/video/video.h>

#include "gstreamer/caps_rule.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

using Buffer = std::unique_ptr<GstBuffer, decltype([](GstBuffer* buffer) { gst_buffer_unref(buffer); })>;
using Context = std::unique_ptr<cvx_context, decltype([](cvx_context* context) { cvx_destroy(context); })>;
constexpr GstClockTime frameTime = GST_SECOND / 25;

/// The planes of a picture as the library has them: V before U.
template <class Picture>
Picture PlanesOf(uint8_t* bytes, const GstVideoInfo& info) {
    const int second = GST_VIDEO_INFO_FORMAT(&info) == GST_VIDEO_FORMAT_I420 ? 2 : 1;
    return {{bytes, bytes + info.offset[second], bytes + info.offset[3 - second]},
            {info.stride[0], info.stride[second], info.stride[3 - second]}};
}

/// The element in a harness, beside a context of the library that gets the same samples.
class ElementTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        gst_init(nullptr, nullptr);
        ASSERT_TRUE(RegisterElement(nullptr));
    }
    ElementTest() { cvx_settings_init(&settings, sizeof settings); }
    ~ElementTest() override { gst_harness_teardown(harness); }

    /// Rows of the next frames are so many bytes apart.
    void Negotiate(GstVideoFormat format, int32_t width, int32_t height, int32_t gap = 0,
                   const char* colours = "bt601") {
        gst_video_info_set_format(&info, format, static_cast<guint>(width), static_cast<guint>(height));
        gst_video_colorimetry_from_string(&info.colorimetry, colours);
        gst_harness_set_src_caps(harness, gst_video_info_to_caps(&info));
        for (guint i = 0; i < GST_VIDEO_INFO_N_PLANES(&info); ++i) {
            info.stride[i] += gap;
            info.offset[i] += i * static_cast<gsize>(gap * height);
            info.size += static_cast<gsize>(gap * height);
        }
        Restart();
    }
    void Restart() {
        const bool pairs = GST_VIDEO_INFO_FORMAT(&info) == GST_VIDEO_FORMAT_NV12;
        const bool packed = GST_VIDEO_INFO_FORMAT(&info) == GST_VIDEO_FORMAT_YUY2;
        cvx_context* made = nullptr;
        ASSERT_EQ(CVX_OK, cvx_create(info.width, info.height,
                                     pairs    ? CVX_FORMAT_NV12
                                     : packed ? CVX_FORMAT_YUY2
                                              : CVX_FORMAT_YV12,
                                     &settings, &made));
        context.reset(made);
    }
    template <class Field, class Value>
    void Set(const char* property, Field cvx_settings::*field, Value value) {
        if (property != nullptr) g_object_set(harness->element, property, value, nullptr);
        settings.*field = static_cast<Field>(value);
        ASSERT_EQ(CVX_OK, cvx_set_settings(context.get(), &settings));
    }

    /// The next frame.
    Buffer Draw() {
        samples.resize(info.size);
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<uint8_t>(50 + i % 89 + i / 11 % 2 * 40 + static_cast<size_t>(number) * 7 % 31);
        Buffer buffer(gst_buffer_new_memdup(samples.data(), samples.size()));
        gst_buffer_add_video_meta_full(buffer.get(), GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_INFO_FORMAT(&info),
                                       static_cast<guint>(info.width), static_cast<guint>(info.height),
                                       GST_VIDEO_INFO_N_PLANES(&info), info.offset, info.stride);
        GST_BUFFER_PTS(buffer.get()) = static_cast<GstClockTime>(number++) * frameTime;
        GST_BUFFER_DURATION(buffer.get()) = frameTime;
        return buffer;
    }
    Buffer Push(const Buffer& in) { return Buffer(gst_harness_push_and_pull(harness, gst_buffer_ref(in.get()))); }

    /// The library's bytes of the frame that was drawn last. Outputs are of sizes that GStreamer puts nothing between the rows of.
    std::vector<uint8_t> Enhanced(GstVideoInfo& large) {
        int32_t width = 0, height = 0;
        cvx_output_size(context.get(), &width, &height);
        gst_video_info_set_format(&large, GST_VIDEO_INFO_FORMAT(&info), static_cast<guint>(width),
                                  static_cast<guint>(height));
        std::vector<uint8_t> expected(large.size);
        const auto source = PlanesOf<cvx_source>(samples.data(), info);
        const auto target = PlanesOf<cvx_target>(expected.data(), large);
        EXPECT_EQ(CVX_OK, cvx_process(context.get(), &source, &target, CVX_NO_TIME));
        return expected;
    }
    void Compare(const Buffer& in) {
        GstVideoInfo large;
        const std::vector<uint8_t> expected = Enhanced(large);
        const Buffer out = Push(in);
        EXPECT_TRUE(out != nullptr && gst_buffer_get_size(out.get()) == large.size &&
                    gst_buffer_memcmp(out.get(), 0, expected.data(), large.size) == 0)
            << GST_VIDEO_INFO_NAME(&info) << " " << info.width << " x " << info.height << ", frame " << number;
    }
    void Play(int count) {
        while (count-- > 0) Compare(Draw());
    }
    void CompareSplit(double split, int line);

    GstHarness* harness = gst_harness_new("clarivex");
    GstVideoInfo info{};
    std::vector<uint8_t> samples;
    cvx_settings settings{};
    Context context;
    int number = 0;
};

TEST_F(ElementTest, GivesTheLibrarysBytesOfEveryFormatSizeAndStride) {
    for (const auto format :
         {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_YV12, GST_VIDEO_FORMAT_NV12, GST_VIDEO_FORMAT_YUY2})
        for (const auto& [width, height, gap] : {std::array{64, 48, 0}, {43, 37, 13}, {33, 17, 1}, {24, 20, 0}}) {
            Negotiate(format, width, height, gap);
            Play(2);
        }
}

TEST_F(ElementTest, BringsFullRangeToThatOfVideo) {
    for (const auto format : {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_NV12, GST_VIDEO_FORMAT_YUY2}) {
        Negotiate(format, 43, 37, 3, "1:4:16:4");
        for (int frame = 0; frame < 2; ++frame) {
            const Buffer in = Draw();
            for (size_t i = 0; i < samples.size(); ++i) {
                const bool chroma = format == GST_VIDEO_FORMAT_YUY2 ? i % static_cast<size_t>(info.stride[0]) % 2 != 0
                                                                    : i >= info.offset[1];
                samples[i] = static_cast<uint8_t>(
                    std::lround(chroma ? 128 + (samples[i] - 128) * 224 / 255.0 : 16 + samples[i] * 219 / 255.0));
            }
            Compare(in);
        }
    }
    g_object_set(harness->element, "enabled", FALSE, nullptr);
    const Buffer in = Draw();
    EXPECT_EQ(in, Push(in));
}

TEST_F(ElementTest, FollowsPropertiesWhileItPlays) {
    Negotiate(GST_VIDEO_FORMAT_I420, 96, 64);
    Play(2);
    Set("sharpness", &cvx_settings::sharpness, 1.7);
    Set("lighting", &cvx_settings::lighting, FALSE);
    Play(2);
    Set("noise", &cvx_settings::noise, FALSE);
    Set("mode", &cvx_settings::mode, CVX_MODE_NEVER);
    Set("caption", &cvx_settings::caption, TRUE);
    Play(12);
    Set("mode", &cvx_settings::mode, CVX_MODE_ALWAYS);
    Play(1);
    g_object_set(harness->element, "enabled", FALSE, nullptr);
    for (const Buffer& in : {Draw(), Draw()}) EXPECT_EQ(in, Push(in));
    g_object_set(harness->element, "enabled", TRUE, nullptr);
    Play(2);  // the stream goes on

    GstControlSource* values = gst_interpolation_control_source_new();
    g_object_set(values, "mode", GST_INTERPOLATION_MODE_LINEAR, nullptr);
    for (const int at : {0, 100})
        gst_timed_value_control_source_set(GST_TIMED_VALUE_CONTROL_SOURCE(values),
                                           static_cast<GstClockTime>(at) * frameTime, at / 100.0);
    GstObject* element = GST_OBJECT(harness->element);
    gst_object_add_control_binding(element, gst_direct_control_binding_new(element, "sharpness", values));
    gst_object_unref(values);
    for (const int at : {50, 75}) {
        Set(nullptr, &cvx_settings::sharpness, at / 50.0);
        number = at;
        Play(1);
    }
}

/// The samples of a picture without gaps, by component and place there.
struct Samples {
    Samples(const GstVideoInfo& given, uint8_t* bytes) : info(given), first(bytes) {}
    int Width(guint c) const { return GST_VIDEO_INFO_COMP_WIDTH(&info, c); }
    int Height(guint c) const { return GST_VIDEO_INFO_COMP_HEIGHT(&info, c); }
    uint8_t& At(guint c, int x, int y) const {
        return first[GST_VIDEO_INFO_COMP_OFFSET(&info, c) +
                     static_cast<gsize>(y * GST_VIDEO_INFO_COMP_STRIDE(&info, c)) +
                     static_cast<gsize>(x * GST_VIDEO_INFO_COMP_PSTRIDE(&info, c))];
    }
    const GstVideoInfo& info;
    uint8_t* first;
};

/// How far a sample is from where it belongs: left of the line on the slope that the source is, its samples' centres being
/// 2/3 or 1 apart and 30 the first of the source; behind it as the library makes it. The line's two columns are light and dark.
/// Cubic filters see three samples around their own, and none beyond the edge.
int Wrong(const Samples& out, const Samples& enhanced, guint c, int x, int y, int line, bool enlarged) {
    const bool luma = c == GST_VIDEO_COMP_Y;
    const int begin = luma ? line : (line + 1) / 2;
    const int end = begin + (luma ? 2 : 1);
    if (x >= end) return std::abs(out.At(c, x, y) - enhanced.At(c, x, y));
    if (x >= begin) return std::abs(out.At(c, x, y) - (luma ? (x == begin ? 235 : 16) : 128));
    const int margin = enlarged ? 3 : 0;
    if (x < margin || x >= begin - margin || y < margin || y >= out.Height(c) - margin) return 0;
    const double pitch = enlarged ? 2.0 / 3 : 1;
    const double slope = 30 + (x + 0.5) * pitch - 0.5 + (y + 0.5) * pitch - 0.5;
    return static_cast<int>(std::abs(out.At(c, x, y) - slope) / (enlarged ? 1.4 : 1));
}

void ElementTest::CompareSplit(double split, int line) {
    g_object_set(harness->element, "split", split, nullptr);
    const Buffer in = Draw();
    const Samples source(info, samples.data());
    for (guint c = 0; c < 3; ++c)
        for (int y = 0; y < source.Height(c); ++y)
            for (int x = 0; x < source.Width(c); ++x) source.At(c, x, y) = static_cast<uint8_t>(30 + x + y);
    gst_buffer_fill(in.get(), 0, samples.data(), samples.size());
    GstVideoInfo large;
    std::vector<uint8_t> expected = Enhanced(large);
    std::vector<uint8_t> got(expected.size());
    const Buffer out = Push(in);
    ASSERT_EQ(got.size(), gst_buffer_extract(out.get(), 0, got.data(), got.size()));
    const Samples enhanced(large, expected.data());
    const Samples drawn(large, got.data());
    int worst = 0;
    for (guint c = 0; c < 3; ++c)
        for (int y = 0; y < drawn.Height(c); ++y)
            for (int x = 0; x < drawn.Width(c); ++x)
                worst = std::max(worst, Wrong(drawn, enhanced, c, x, y, line, large.width != info.width));
    EXPECT_EQ(0, worst) << GST_VIDEO_INFO_NAME(&info) << " " << info.width << ", split at " << split;
}

TEST_F(ElementTest, ShowsTheSourceLeftOfTheSplit) {
    for (const auto format :
         {GST_VIDEO_FORMAT_I420, GST_VIDEO_FORMAT_YV12, GST_VIDEO_FORMAT_NV12, GST_VIDEO_FORMAT_YUY2})
        for (const auto& [width, height, half, whole] :
             {std::array{96, 64, 72, 144}, {43, 37, 30, 64}, {25, 21, 12, 25}}) {
            Negotiate(format, width, height, 5);
            for (const auto& [split, line] : {std::pair{0.5, half}, {0.01, 0}, {1.0, whole}, {0.0, -4}})
                CompareSplit(split, line);
        }
}

TEST_F(ElementTest, BeginsAnewWhereTheFilmDoes) {
    Negotiate(GST_VIDEO_FORMAT_YV12, 64, 48);
    Play(3);
    for (const bool flush : {false, true}) {
        if (flush) gst_harness_push_event(harness, gst_event_new_flush_start());
        if (flush) gst_harness_push_event(harness, gst_event_new_flush_stop(TRUE));
        GstSegment segment;
        gst_segment_init(&segment, GST_FORMAT_TIME);
        gst_harness_push_event(harness, gst_event_new_segment(&segment));
        Restart();
        Play(3);
    }
    for (const int leap : {1, 60, -60}) {  // frames; a late decoder skips few
        number += leap;
        const Buffer marked = Draw();
        GST_BUFFER_FLAG_SET(marked.get(), GST_BUFFER_FLAG_DISCONT);
        if (leap != 1) Restart();
        Compare(marked);
        Play(1);
    }
    gst_harness_push_event(harness, gst_event_new_eos());
    EXPECT_EQ(GST_FLOW_EOS, gst_harness_push(harness, Draw().release()));
}

TEST_F(ElementTest, TellsOfShortMemory) {
    GstBus* bus = gst_bus_new();
    gst_element_set_bus(harness->element, bus);
    Negotiate(GST_VIDEO_FORMAT_YUY2, 64, 48);
    Buffer frame = Draw();
    {
        const ShortMemory shortage(0, ShortMemory::forEver);
        EXPECT_EQ(GST_FLOW_ERROR, gst_harness_push(harness, frame.release()));
    }
    GstMessage* message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
    ASSERT_NE(nullptr, message);
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    EXPECT_STREQ("A frame of 64x48 cannot be enhanced: memory is short.", error->message);
    g_error_free(error);
    gst_message_unref(message);
    gst_element_set_bus(harness->element, nullptr);
    gst_object_unref(bus);
}

// Widths are 3/2 rounded down to even, heights 3/2 of the even part; what is less than 32 wide stays. Colours are those that
// the source's size stands for.
#define RAW "video/x-raw,"
#define KEPT RAW "format=I420,framerate=25/1,pixel-aspect-ratio=16/15,width="
const struct {
    GstPadDirection direction;
    int32_t mode;
    const char* given;
    const char* expected;
} capsRows[] = {
    {GST_PAD_SINK, CVX_MODE_ALWAYS, RAW "width=33,height=37", RAW "width=48,height=54"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, RAW "width=[1,100],height=[1,100]",
     RAW "width=[48,150],height=[24,150];" RAW "width=[16,31],height=[16,100]"},
    {GST_PAD_SINK, CVX_MODE_NEVER, RAW "width=33,height=[1,37]", RAW "width=33,height=[16,37]"},
    {GST_PAD_SINK, CVX_MODE_AUTO, RAW "width=[1,100],height=20",
     RAW "width=[48,150],height=30;" RAW "width=[16,100],height=20"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, RAW "width={8,40,64},height={[30,40],9000}",
     RAW "width=60,height=[45,60];" RAW "width=96,height=[45,60]"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, RAW "format=NV12",
     RAW "format=NV12,width=[48,12288],height=[24,12288];" RAW "format=NV12,width=[16,31],height=[16,8192]"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, RAW "width=8193,height=64", "EMPTY"},
    {GST_PAD_SRC, CVX_MODE_ALWAYS, RAW "width=48,height=54", RAW "width=[32,33],height=[36,37]"},
    {GST_PAD_SRC, CVX_MODE_ALWAYS, RAW "width=49,height=54", "EMPTY"},
    {GST_PAD_SRC, CVX_MODE_ALWAYS, RAW "width=[1,50],height={55,57,60}",
     RAW "width=[32,34],height=[38,39];" RAW "width=[32,34],height=[40,41];" RAW "width=[16,31],height=55;" RAW
         "width=[16,31],height=57;" RAW "width=[16,31],height=60"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, KEPT "720,height=576", KEPT "1080,height=864,colorimetry=bt601,chroma-site=jpeg"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, KEPT "720,height=578", KEPT "1080,height=867,colorimetry=bt709,chroma-site=mpeg2"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, KEPT "720,height=576,colorimetry=2:0:0:0,chroma-site=dv",
     KEPT "1080,height=864,colorimetry=bt601,chroma-site=dv"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, KEPT "720,height=576,colorimetry=2:3:5:1",
     KEPT "1080,height=864,colorimetry=2:3:5:1"},
    {GST_PAD_SINK, CVX_MODE_NEVER, RAW "width=64,height=48,colorimetry={1:3:5:1,bt601}",
     RAW "width=64,height=48,colorimetry={bt709,bt601}"},
    {GST_PAD_SINK, CVX_MODE_ALWAYS, KEPT "720,height=576,colorimetry=1:3:5:1",
     KEPT "1080,height=864,colorimetry=bt709"},
    {GST_PAD_SRC, CVX_MODE_ALWAYS, RAW "width=48,height=36,colorimetry={bt709,1:4:5:1}",
     RAW "width=[32,33],height=[24,25],colorimetry={bt709,1:3:5:1}"},
    {GST_PAD_SRC, CVX_MODE_ALWAYS, RAW "width=48,height=36,colorimetry=1:4:5:1", "EMPTY"},
};

TEST_F(ElementTest, FindsTheCapsOfTheOtherPad) {
    for (const auto& row : capsRows) {
        GstCaps* given = gst_caps_from_string(row.given);
        GstCaps* expected = gst_caps_from_string(row.expected);
        GstCaps* got = TransformCaps(row.direction, given, row.mode);
        gchar* text = gst_caps_to_string(got);
        EXPECT_TRUE(gst_caps_is_equal(expected, got)) << row.given << " becomes " << text;
        g_free(text);
        for (GstCaps* caps : {given, expected, got}) gst_caps_unref(caps);
    }
    GstCaps* given = gst_caps_from_string(RAW "width=64,height=48");
    GstCaps* got = TransformCaps(GST_PAD_SINK, given, CVX_MODE_AUTO);
    EXPECT_EQ(1U, gst_caps_get_size(got)) << "of a fixed source it is known whether it is enlarged";
    for (GstCaps* caps : {given, got}) gst_caps_unref(caps);
}

}  // namespace
}  // namespace clarivex
