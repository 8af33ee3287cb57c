#include "gstreamer/element.h"

#include <clarivex/clarivex.h>
#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>

#include <array>
#include <bit>
#include <new>
#include <utility>

#include "gstreamer/caps_rule.h"
#include "gstreamer/plain_part.h"
#include "gstreamer/video_range.h"

namespace clarivex {
namespace {

GST_DEBUG_CATEGORY_STATIC(category);
#define GST_CAT_DEFAULT category

/// The element. GObject fills it with zeros and calls neither constructor nor destructor.
struct GstClarivex {
    GstVideoFilter parent;

    // Guarded by the object's lock.
    cvx_settings wanted;
    gboolean enabled;
    gfloat split;

    // The streaming thread's.
    cvx_context* context;
    cvx_settings used;           // by the context
    PlainPart* plain;            // none before the first frame with a plain part
    VideoRangeCopy* videoRange;  // none before the first frame of full range
    gboolean newStream;
    GstClockTime expectedTime;  // of the next frame
};

struct GstClarivexClass {
    GstVideoFilterClass parent;
};
GstBaseTransformClass* parentClass = nullptr;

GstClarivex* ElementOf(gpointer object) { return static_cast<GstClarivex*>(object); }

enum Property : guint { sharpness = 1, lighting, mode, noise, caption, enabled, split };

// What the properties may be is what the library takes.
constexpr float largestSharpness = 2.0F;
// A frame that begins so much later or earlier than the one before has ended belongs to another place of the film. Decoders
// mark frames behind those that they skip when they are late, too: the stream goes on there.
constexpr GstClockTimeDiff largestGap = GST_SECOND;

#define SIDES(largest) ", width = (int) [ 16, " largest " ], height = (int) [ 16, " largest " ]"
#define FORMATS "video/x-raw, format = (string) { I420, YV12, NV12, YUY2 }, interlace-mode = (string) progressive"
#define RATE ", framerate = (fraction) [ 0, max ]"
static_assert(CVX_SMALLEST_SIDE == 16 && CVX_LARGEST_SIDE == 8192, "the templates tell other sides");
GstStaticPadTemplate sinkTemplate =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(FORMATS SIDES("8192") RATE));
GstStaticPadTemplate sourceTemplate =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(FORMATS SIDES("12288") RATE));

GType ModeType() {
    static const GEnumValue modes[] = {{CVX_MODE_NEVER, "The output is as large as the source", "never"},
                                       {CVX_MODE_AUTO, "Enlarged where the processor is fast enough", "auto"},
                                       {CVX_MODE_ALWAYS, "Enlarged by three halves", "always"},
                                       {0, nullptr, nullptr}};
    static const GType type = g_enum_register_static("GstClarivexMode", modes);
    return type;
}

// Properties.

void SetProperty(GObject* object, guint property, const GValue* value, GParamSpec* spec) {
    GstClarivex* element = ElementOf(object);
    cvx_settings& wanted = element->wanted;
    GST_OBJECT_LOCK(element);
    switch (property) {
        case Property::sharpness: wanted.sharpness = g_value_get_float(value); break;
        case Property::lighting: wanted.lighting = g_value_get_boolean(value); break;
        case Property::mode: wanted.mode = g_value_get_enum(value); break;
        case Property::noise: wanted.noise = g_value_get_boolean(value); break;
        case Property::caption: wanted.caption = g_value_get_boolean(value); break;
        case Property::enabled: element->enabled = g_value_get_boolean(value); break;
        case Property::split: element->split = g_value_get_float(value); break;
        default: G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, spec); break;
    }
    GST_OBJECT_UNLOCK(element);
    // The caps may be others from the next frame on.
    if (property == Property::mode || property == Property::enabled)
        gst_base_transform_reconfigure_src(GST_BASE_TRANSFORM(object));
}

void GetProperty(GObject* object, guint property, GValue* value, GParamSpec* spec) {
    GstClarivex* element = ElementOf(object);
    const cvx_settings& wanted = element->wanted;
    GST_OBJECT_LOCK(element);
    switch (property) {
        case Property::sharpness: g_value_set_float(value, wanted.sharpness); break;
        case Property::lighting: g_value_set_boolean(value, wanted.lighting); break;
        case Property::mode: g_value_set_enum(value, wanted.mode); break;
        case Property::noise: g_value_set_boolean(value, wanted.noise); break;
        case Property::caption: g_value_set_boolean(value, wanted.caption); break;
        case Property::enabled: g_value_set_boolean(value, element->enabled); break;
        case Property::split: g_value_set_float(value, element->split); break;
        default: G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, spec); break;
    }
    GST_OBJECT_UNLOCK(element);
}

/// What the properties ask for, all of one moment.
cvx_settings Wanted(GstClarivex* element, bool& isEnabled) {
    GST_OBJECT_LOCK(element);
    const cvx_settings wanted = element->wanted;
    isEnabled = element->enabled != 0;
    GST_OBJECT_UNLOCK(element);
    return wanted;
}

bool IsEnabled(GstClarivex* element) {
    bool isEnabled = false;
    Wanted(element, isEnabled);
    return isEnabled;
}

// Negotiation.

GstCaps* TransformPadCaps(GstBaseTransform* base, GstPadDirection direction, GstCaps* caps, GstCaps* filter) {
    bool isEnabled = false;
    const cvx_settings wanted = Wanted(ElementOf(base), isEnabled);
    GstCaps* others = isEnabled ? TransformCaps(direction, caps, wanted.mode) : gst_caps_ref(caps);
    GST_DEBUG_OBJECT(base, "%" GST_PTR_FORMAT " becomes %" GST_PTR_FORMAT, caps, others);
    if (filter == nullptr) return others;
    GstCaps* allowed = gst_caps_intersect_full(filter, others, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(others);
    return allowed;
}

bool HaveSameSize(const GstVideoInfo& a, const GstVideoInfo& b) { return a.width == b.width && a.height == b.height; }

void LetPass(GstClarivex* element, const GstVideoInfo& in, const GstVideoInfo& out) {
    gst_base_transform_set_passthrough(GST_BASE_TRANSFORM(element), !IsEnabled(element) && HaveSameSize(in, out));
}

void EndStream(GstClarivex* element) {
    cvx_destroy(element->context);
    element->context = nullptr;
    delete std::exchange(element->plain, nullptr);
    delete std::exchange(element->videoRange, nullptr);
}

gboolean SetInfo(GstVideoFilter* filter, GstCaps* /*inCaps*/, GstVideoInfo* in, GstCaps* /*outCaps*/,
                 GstVideoInfo* out) {
    GstClarivex* element = ElementOf(filter);
    const GstVideoInfo& before = filter->in_info;
    const bool sameSource = HaveSameSize(before, *in) && GST_VIDEO_INFO_FORMAT(&before) == GST_VIDEO_INFO_FORMAT(in);
    if (!sameSource) EndStream(element);
    LetPass(element, *in, *out);
    return TRUE;
}

// Frames.

int32_t LibraryFormat(const GstVideoInfo& info) {
    switch (GST_VIDEO_INFO_FORMAT(&info)) {
        case GST_VIDEO_FORMAT_NV12: return CVX_FORMAT_NV12;
        case GST_VIDEO_FORMAT_YUY2: return CVX_FORMAT_YUY2;
        default: return CVX_FORMAT_YV12;  // I420 too: its chroma is told apart by the pointers
    }
}

/// cvx_source or cvx_target of a frame.
template <class Picture>
Picture PlanesOf(GstVideoFrame* frame) {
    const GstVideoInfo& info = frame->info;
    const bool planar = LibraryFormat(info) == CVX_FORMAT_YV12;
    const guint order[] = {0, planar ? GST_VIDEO_INFO_COMP_PLANE(&info, GST_VIDEO_COMP_V) : 1U,
                           static_cast<guint>(GST_VIDEO_INFO_COMP_PLANE(&info, GST_VIDEO_COMP_U))};
    Picture picture{};
    for (guint i = 0; i < GST_VIDEO_INFO_N_PLANES(&info); ++i) {
        picture.plane[i] = static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(frame, order[i]));
        picture.stride[i] = GST_VIDEO_FRAME_PLANE_STRIDE(frame, order[i]);
    }
    return picture;
}

/// The settings of frames between these caps. The sizes decide what the mode comes to: the property may be ahead of them.
cvx_settings SettingsFor(GstClarivex* element, const GstVideoInfo& in, const GstVideoInfo& out) {
    bool isEnabled = false;
    cvx_settings settings = Wanted(element, isEnabled);
    settings.mode = HaveSameSize(in, out) ? CVX_MODE_NEVER : CVX_MODE_ALWAYS;
    constexpr double largestAspect = 64;
    const double aspect = static_cast<double>(in.par_n) / in.par_d;
    settings.pixel_aspect = static_cast<float>(CLAMP(aspect, 1 / largestAspect, largestAspect));
    return settings;
}

bool AreEqual(const cvx_settings& a, const cvx_settings& b) {
    using Bytes = std::array<uint8_t, sizeof a>;
    return std::bit_cast<Bytes>(a) == std::bit_cast<Bytes>(b);
}

/// Makes the context, or lets it follow what has changed since the last frame.
cvx_result Prepare(GstClarivex* element, const GstVideoInfo& in, const GstVideoInfo& out) {
    const cvx_settings settings = SettingsFor(element, in, out);
    cvx_result result = CVX_OK;
    if (element->context == nullptr) {
        result = cvx_create(in.width, in.height, LibraryFormat(in), &settings, &element->context);
    } else {
        if (!AreEqual(settings, element->used)) result = cvx_set_settings(element->context, &settings);
        if (result == CVX_OK && element->newStream) result = cvx_reset(element->context);
    }
    if (result != CVX_OK) return result;
    element->used = settings;
    element->newStream = FALSE;
    return CVX_OK;
}

void DrawPlainPart(GstClarivex* element, GstVideoFrame* in, GstVideoFrame* out) {
    GST_OBJECT_LOCK(element);
    const double part = element->split;
    GST_OBJECT_UNLOCK(element);
    if (part <= 0) return;
    if (element->plain == nullptr) element->plain = new PlainPart{};
    element->plain->Draw(part, *in, *out);
}

int64_t TimeOf(const GstBuffer* buffer) {
    return GST_BUFFER_PTS_IS_VALID(buffer) ? static_cast<int64_t>(GST_BUFFER_PTS(buffer)) : CVX_NO_TIME;
}

/// The frame, or what it is in video range.
cvx_result BringToVideoRange(GstClarivex* element, GstVideoFrame& frame) {
    if (!IsFullRange(frame.info.colorimetry)) return CVX_OK;
    if (element->videoRange == nullptr) element->videoRange = new (std::nothrow) VideoRangeCopy;
    const bool made = element->videoRange != nullptr && element->videoRange->Make(frame, frame);
    return made ? CVX_OK : CVX_ERROR_MEMORY;
}

GstFlowReturn TransformFrame(GstVideoFilter* filter, GstVideoFrame* in, GstVideoFrame* out) {
    GstClarivex* element = ElementOf(filter);
    GstVideoFrame read = *in;
    cvx_result result = BringToVideoRange(element, read);
    if (result == CVX_OK) result = Prepare(element, in->info, out->info);
    if (result == CVX_OK) {
        const auto source = PlanesOf<cvx_source>(&read);
        const auto target = PlanesOf<cvx_target>(out);
        result = cvx_process(element->context, &source, &target, TimeOf(in->buffer));
    }
    if (result == CVX_OK) {
        DrawPlainPart(element, &read, out);
        return GST_FLOW_OK;
    }
    GST_ELEMENT_ERROR(
        element, LIBRARY, FAILED,
        ("A frame of %dx%d cannot be enhanced: %s.", in->info.width, in->info.height, cvx_error_text(result)),
        ("cvx_result %d", result));
    return GST_FLOW_ERROR;
}

// The stream.

/// Whether the frame stands at another place of the film than behind the one before.
bool IsBreak(const GstClarivex* element, const GstBuffer* buffer) {
    if (!GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT)) return false;
    if (!GST_CLOCK_TIME_IS_VALID(element->expectedTime) || !GST_BUFFER_PTS_IS_VALID(buffer)) return true;
    return ABS(GST_CLOCK_DIFF(element->expectedTime, GST_BUFFER_PTS(buffer))) > largestGap;
}

void FollowTime(GstClarivex* element, const GstBuffer* buffer) {
    if (IsBreak(element, buffer)) element->newStream = TRUE;
    element->expectedTime = GST_BUFFER_PTS(buffer);
    if (GST_BUFFER_PTS_IS_VALID(buffer) && GST_BUFFER_DURATION_IS_VALID(buffer))
        element->expectedTime += GST_BUFFER_DURATION(buffer);
}

/// Called for each buffer before the base class looks whether the caps are to be negotiated anew.
void BeforeTransform(GstBaseTransform* base, GstBuffer* buffer) {
    GstClarivex* element = ElementOf(base);
    FollowTime(element, buffer);
    if (base->segment.format == GST_FORMAT_TIME && GST_BUFFER_PTS_IS_VALID(buffer)) {
        const guint64 time = gst_segment_to_stream_time(&base->segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
        if (GST_CLOCK_TIME_IS_VALID(time)) gst_object_sync_values(GST_OBJECT(base), time);
    }
    const GstVideoFilter& filter = element->parent;
    LetPass(element, filter.in_info, filter.out_info);
}

gboolean SinkEvent(GstBaseTransform* base, GstEvent* event) {
    // One stands at the beginning of each film, and behind each flush.
    if (GST_EVENT_TYPE(event) == GST_EVENT_SEGMENT) ElementOf(base)->newStream = TRUE;
    return parentClass->sink_event(base, event);
}

gboolean Stop(GstBaseTransform* base) {
    EndStream(ElementOf(base));
    return TRUE;
}

// The class.

void InstallProperty(GObjectClass* object, Property property, GParamSpec* spec) {
    g_object_class_install_property(object, property, spec);
}

void InstallProperties(GObjectClass* object) {
    constexpr auto flags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                                    GST_PARAM_CONTROLLABLE | GST_PARAM_MUTABLE_PLAYING);
    cvx_settings preset;
    cvx_settings_init(&preset, sizeof preset);
    const auto boolean = [&](Property property, const char* name, const char* nick, const char* blurb, gboolean value) {
        InstallProperty(object, property, g_param_spec_boolean(name, nick, blurb, value, flags));
    };
    const auto number = [&](Property property, const char* name, const char* nick, const char* blurb, float largest,
                            float value) {
        InstallProperty(object, property, g_param_spec_float(name, nick, blurb, 0, largest, value, flags));
    };
    number(Property::sharpness, "sharpness", "Sharpness", "Crispness of edges and detail; 0 adds none",
           largestSharpness, preset.sharpness);
    boolean(Property::lighting, "lighting", "Lighting", "Let black, white and saturation follow the film",
            preset.lighting);
    InstallProperty(object, Property::mode,
                    g_param_spec_enum("mode", "Mode", "Whether pictures are enlarged by exactly three halves",
                                      ModeType(), preset.mode, flags));
    boolean(Property::noise, "noise", "Noise", "Add a little film-like noise", preset.noise);
    boolean(Property::caption, "caption", "Caption", "Fade a caption in and out over the first 276 frames",
            preset.caption);
    boolean(Property::enabled, "enabled", "Enabled", "Enhance; otherwise frames pass through as they are", TRUE);
    number(Property::split, "split", "Split",
           "Part of the width, from the left, that shows the source plainly enlarged; a line ends it. 0: none", 1, 0);
}

void InitialiseClass(gpointer type, gpointer /*data*/) {
    GST_DEBUG_CATEGORY_INIT(category, "clarivex", 0, "video enhancement");
    parentClass = static_cast<GstBaseTransformClass*>(g_type_class_peek_parent(type));
    auto* object = G_OBJECT_CLASS(type);
    object->set_property = SetProperty;
    object->get_property = GetProperty;
    InstallProperties(object);

    auto* element = GST_ELEMENT_CLASS(type);
    gst_element_class_add_static_pad_template(element, &sinkTemplate);
    gst_element_class_add_static_pad_template(element, &sourceTemplate);
    gst_element_class_set_static_metadata(element, "Clarivex", "Filter/Effect/Video",
                                          "Sharpens video, corrects its lighting and enlarges it by three halves",
                                          "Clarivex developers <clarivex@example.org>");

    auto* base = GST_BASE_TRANSFORM_CLASS(type);
    base->transform_caps = TransformPadCaps;
    base->before_transform = BeforeTransform;
    base->sink_event = SinkEvent;
    base->stop = Stop;
    auto* filter = GST_VIDEO_FILTER_CLASS(type);
    filter->set_info = SetInfo;
    filter->transform_frame = TransformFrame;
}

void InitialiseElement(GTypeInstance* instance, gpointer /*type*/) {
    GstClarivex* element = ElementOf(instance);
    cvx_settings_init(&element->wanted, sizeof element->wanted);
    element->enabled = TRUE;
    element->expectedTime = GST_CLOCK_TIME_NONE;
}

GType ElementType() {
    static const GType type =
        g_type_register_static_simple(GST_TYPE_VIDEO_FILTER, "GstClarivex", sizeof(GstClarivexClass), InitialiseClass,
                                      sizeof(GstClarivex), InitialiseElement, GTypeFlags{});
    return type;
}

}  // namespace

bool RegisterElement(GstPlugin* plugin) {
    return gst_element_register(plugin, "clarivex", GST_RANK_NONE, ElementType()) != 0;
}

}  // namespace clarivex
