#include "gstreamer/element.h"

#include <clarivex/clarivex.h>
#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>

#include <new>
#include <utility>

#include "gstreamer/caps_rule.h"
#include "gstreamer/frame_enhancer.h"

namespace clarivex {
namespace {

GST_DEBUG_CATEGORY_STATIC(category);
#define GST_CAT_DEFAULT category

/// What the properties ask for.
struct Wishes {
    cvx_settings settings;
    bool enabled;
    float split;
};

/// The element. GObject fills it with zeros and calls neither constructor nor destructor.
struct GstClarivex {
    GstVideoFilter parent;

    Wishes wishes;  // guarded by the object's lock

    // The streaming thread's.
    FrameEnhancer* frames;      // none before the first frame of a size and format
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

void SetProperty(GObject* object, guint property, const GValue* value, GParamSpec* description) {
    GstClarivex* element = ElementOf(object);
    auto& [wanted, enabled, split] = element->wishes;
    GST_OBJECT_LOCK(element);
    switch (property) {
        case Property::sharpness: wanted.sharpness = g_value_get_float(value); break;
        case Property::lighting: wanted.lighting = g_value_get_boolean(value); break;
        case Property::mode: wanted.mode = g_value_get_enum(value); break;
        case Property::noise: wanted.noise = g_value_get_boolean(value); break;
        case Property::caption: wanted.caption = g_value_get_boolean(value); break;
        case Property::enabled: enabled = g_value_get_boolean(value) != 0; break;
        case Property::split: split = g_value_get_float(value); break;
        default: G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, description); break;
    }
    GST_OBJECT_UNLOCK(element);
    // The caps may be others from the next frame on.
    if (property == Property::mode || property == Property::enabled)
        gst_base_transform_reconfigure_src(GST_BASE_TRANSFORM(object));
}

void GetProperty(GObject* object, guint property, GValue* value, GParamSpec* description) {
    GstClarivex* element = ElementOf(object);
    const auto& [wanted, enabled, split] = element->wishes;
    GST_OBJECT_LOCK(element);
    switch (property) {
        case Property::sharpness: g_value_set_float(value, wanted.sharpness); break;
        case Property::lighting: g_value_set_boolean(value, wanted.lighting); break;
        case Property::mode: g_value_set_enum(value, wanted.mode); break;
        case Property::noise: g_value_set_boolean(value, wanted.noise); break;
        case Property::caption: g_value_set_boolean(value, wanted.caption); break;
        case Property::enabled: g_value_set_boolean(value, enabled); break;
        case Property::split: g_value_set_float(value, split); break;
        default: G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, description); break;
    }
    GST_OBJECT_UNLOCK(element);
}

/// All of one moment.
Wishes WishesOf(GstClarivex* element) {
    GST_OBJECT_LOCK(element);
    const Wishes wishes = element->wishes;
    GST_OBJECT_UNLOCK(element);
    return wishes;
}

// Negotiation.

GstCaps* TransformPadCaps(GstBaseTransform* base, GstPadDirection direction, GstCaps* caps, GstCaps* filter) {
    const Wishes wishes = WishesOf(ElementOf(base));
    GstCaps* others = wishes.enabled ? TransformCaps(direction, caps, wishes.settings.mode) : gst_caps_ref(caps);
    GST_DEBUG_OBJECT(base, "%" GST_PTR_FORMAT " becomes %" GST_PTR_FORMAT, caps, others);
    if (filter == nullptr) return others;
    GstCaps* allowed = gst_caps_intersect_full(filter, others, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(others);
    return allowed;
}

void LetPass(GstClarivex* element, const GstVideoInfo& in, const GstVideoInfo& out) {
    gst_base_transform_set_passthrough(GST_BASE_TRANSFORM(element),
                                       !WishesOf(element).enabled && HaveSameSize(in, out));
}

void EndStream(GstClarivex* element) { delete std::exchange(element->frames, nullptr); }

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

GstFlowReturn TransformFrame(GstVideoFilter* filter, GstVideoFrame* in, GstVideoFrame* out) {
    GstClarivex* element = ElementOf(filter);
    if (element->frames == nullptr) element->frames = new (std::nothrow) FrameEnhancer;
    const Wishes wishes = WishesOf(element);
    const cvx_result result = element->frames != nullptr
                                  ? element->frames->Enhance(wishes.settings, wishes.split, *in, *out)
                                  : CVX_ERROR_MEMORY;
    if (result == CVX_OK) return GST_FLOW_OK;
    GST_ELEMENT_ERROR(
        element, LIBRARY, FAILED,
        ("A frame of %dx%d cannot be enhanced: %s.", in->info.width, in->info.height, cvx_error_text(result)),
        ("cvx_result %d", result));
    return GST_FLOW_ERROR;
}

// The stream.

void BeginAnew(GstClarivex* element) {
    if (element->frames != nullptr) element->frames->BeginAnew();
}

/// Whether the frame stands at another place of the film than behind the one before.
bool IsBreak(const GstClarivex* element, const GstBuffer* buffer) {
    if (!GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT)) return false;
    if (!GST_CLOCK_TIME_IS_VALID(element->expectedTime) || !GST_BUFFER_PTS_IS_VALID(buffer)) return true;
    return ABS(GST_CLOCK_DIFF(element->expectedTime, GST_BUFFER_PTS(buffer))) > largestGap;
}

void FollowTime(GstClarivex* element, const GstBuffer* buffer) {
    if (IsBreak(element, buffer)) BeginAnew(element);
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
    if (GST_EVENT_TYPE(event) == GST_EVENT_SEGMENT) BeginAnew(ElementOf(base));
    return parentClass->sink_event(base, event);
}

gboolean Stop(GstBaseTransform* base) {
    EndStream(ElementOf(base));
    return TRUE;
}

// The class.

void InstallProperty(GObjectClass* object, Property property, GParamSpec* description) {
    g_object_class_install_property(object, property, description);
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
    cvx_settings& settings = element->wishes.settings;
    cvx_settings_init(&settings, sizeof settings);
    element->wishes.enabled = true;
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
