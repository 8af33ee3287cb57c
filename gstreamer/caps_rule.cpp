#include "gstreamer/caps_rule.h"

#include <clarivex/clarivex.h>
#include <gst/video/video.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gstreamer/video_range.h"

namespace clarivex {
namespace {

struct Size {
    int32_t width = 0;
    int32_t height = 0;

    bool operator==(const Size&) const = default;
};
using Side = int32_t Size::*;

/// Lengths of a side, both ends included; none when they are the wrong way round.
struct Span {
    int32_t first = 0;
    int32_t last = 0;
};

constexpr Span anySourceSide{CVX_SMALLEST_SIDE, CVX_LARGEST_SIDE};

/// Sides of sources and the sides of their outputs.
struct Match {
    Span source;
    Span output;
};

/// One way from sources to outputs: the sources that may go it, and whether they are enlarged there.
struct Way {
    bool enlarged = false;
    Span widths;
    Span heights = anySourceSide;
};

Span Common(const Span& a, const Span& b) { return {std::max(a.first, b.first), std::min(a.last, b.last)}; }

/// The first of the lengths for which it holds, as it does for all behind that; else the one behind the last.
template <class Condition>
int32_t FirstOf(const Span& span, Condition holds) {
    int32_t first = span.first;
    int32_t end = span.last + 1;
    while (first < end) {
        const int32_t middle = (first + end) / 2;
        if (holds(middle))
            end = middle;
        else
            first = middle + 1;
    }
    return first;
}

/// The size of the output of a source that the library takes.
Size Predict(const Size& source, int32_t mode) {
    cvx_settings settings;
    cvx_settings_init(&settings, sizeof settings);
    settings.mode = mode;
    Size output;
    cvx_predict_output_size(source.width, source.height, &settings, &output.width, &output.height);
    return output;
}

/// A side of an enlarged picture. It depends on the same side of the source alone, and never shrinks with it.
int32_t EnlargedSide(Side side, int32_t length) {
    Size source{CVX_LARGEST_SIDE, CVX_LARGEST_SIDE};
    source.*side = length;
    return Predict(source, CVX_MODE_ALWAYS).*side;
}

/// The least width that the library enlarges.
int32_t FirstEnlargedWidth() {
    static const int32_t first =
        FirstOf(anySourceSide, [](int32_t width) { return EnlargedSide(&Size::width, width) != width; });
    return first;
}

std::vector<Way> WaysOf(int32_t mode) {
    const Way enlarging{.enlarged = true, .widths = {FirstEnlargedWidth(), anySourceSide.last}};
    const Way keeping{.widths = anySourceSide};
    if (mode == CVX_MODE_NEVER) return {keeping};
    if (mode == CVX_MODE_AUTO) return {enlarging, keeping};
    return {enlarging, {.widths = {anySourceSide.first, enlarging.widths.first - 1}}};
}

/// The outputs' sides of sources' sides.
Span Forward(const Way& way, Side side, const Span& sources) {
    if (!way.enlarged || sources.first > sources.last) return sources;
    return {EnlargedSide(side, sources.first), EnlargedSide(side, sources.last)};
}

/// Those of the sources' sides whose outputs' sides are among `outputs`.
Span Backward(const Way& way, Side side, const Span& sources, const Span& outputs) {
    if (!way.enlarged) return Common(sources, outputs);
    return {FirstOf(sources, [&](int32_t length) { return EnlargedSide(side, length) >= outputs.first; }),
            FirstOf(sources, [&](int32_t length) { return EnlargedSide(side, length) > outputs.last; }) - 1};
}

std::vector<Span> ReadLengths(const GValue* value) {
    if (value == nullptr) return {{1, G_MAXINT}};
    if (G_VALUE_HOLDS_INT(value)) return {{g_value_get_int(value), g_value_get_int(value)}};
    if (GST_VALUE_HOLDS_INT_RANGE(value))
        return {{gst_value_get_int_range_min(value), gst_value_get_int_range_max(value)}};
    std::vector<Span> all;
    if (GST_VALUE_HOLDS_LIST(value))
        for (guint i = 0; i < gst_value_list_get_size(value); ++i)
            for (const Span& span : ReadLengths(gst_value_list_get_value(value, i))) all.push_back(span);
    return all;
}

void WriteSpan(GstStructure* structure, const char* field, const Span& span) {
    if (span.first == span.last)
        gst_structure_set(structure, field, G_TYPE_INT, span.first, nullptr);
    else
        gst_structure_set(structure, field, GST_TYPE_INT_RANGE, span.first, span.last, nullptr);
}

/// What goes that way of a side of the given structure, which is the sources' for GST_PAD_SINK.
std::vector<Match> MatchesOf(GstPadDirection direction, const Way& way, Side side, const GstStructure* given) {
    const Span& all = side == &Size::width ? way.widths : way.heights;
    std::vector<Match> matches;
    for (const Span& span : ReadLengths(gst_structure_get_value(given, side == &Size::width ? "width" : "height"))) {
        const Span sources = direction == GST_PAD_SINK ? Common(all, span) : Backward(way, side, all, span);
        if (sources.first > sources.last) continue;
        const Span outputs = Forward(way, side, sources);
        matches.push_back({sources, direction == GST_PAD_SINK ? outputs : Common(outputs, span)});
    }
    return matches;
}

bool IsFixed(const Match& match) {
    return match.source.first == match.source.last && match.output.first == match.output.last;
}

/// Whether the library may make such outputs of such sources. In doubt it may.
bool IsPossible(const Match& width, const Match& height, int32_t mode) {
    if (!IsFixed(width) || !IsFixed(height)) return true;
    return Predict({width.source.first, height.source.first}, mode) == Size{width.output.first, height.output.first};
}

void WriteText(GstStructure* structure, const char* field, gchar* text) {
    gst_structure_set(structure, field, G_TYPE_STRING, text, nullptr);
    g_free(text);
}

/// Texts of a field that holds one or a list of them; none of any other field.
std::vector<std::string> ReadTexts(const GValue* value) {
    if (value == nullptr) return {};
    if (G_VALUE_HOLDS_STRING(value)) return {g_value_get_string(value)};
    std::vector<std::string> all;
    if (GST_VALUE_HOLDS_LIST(value))
        for (guint i = 0; i < gst_value_list_get_size(value); ++i)
            for (std::string& text : ReadTexts(gst_value_list_get_value(value, i))) all.push_back(std::move(text));
    return all;
}

void WriteTexts(GstStructure* structure, const char* field, const std::vector<std::string>& texts) {
    GValue list = G_VALUE_INIT;
    g_value_init(&list, GST_TYPE_LIST);
    for (const std::string& text : texts) {
        GValue value = G_VALUE_INIT;
        g_value_init(&value, G_TYPE_STRING);
        g_value_set_string(&value, text.c_str());
        gst_value_list_append_and_take_value(&list, &value);
    }
    if (texts.size() == 1)
        gst_structure_set(structure, field, G_TYPE_STRING, texts.front().c_str(), nullptr);
    else
        gst_structure_set_value(structure, field, &list);
    g_value_unset(&list);
}

std::string TextOf(const GstVideoColorimetry& colours) {
    gchar* text = gst_video_colorimetry_to_string(&colours);
    std::string copy(text != nullptr ? text : "");
    g_free(text);
    return copy;
}

/// Outputs are of video range, whatever the source's. False where no source has such an output.
bool MapRanges(GstPadDirection direction, GstStructure* structure) {
    const std::vector<std::string> given = ReadTexts(gst_structure_get_value(structure, "colorimetry"));
    if (given.empty()) return true;
    std::vector<std::string> others;
    for (const std::string& text : given) {
        GstVideoColorimetry colours;
        if (gst_video_colorimetry_from_string(&colours, text.c_str()) == 0) return true;
        const bool full = IsFullRange(colours);
        if (direction == GST_PAD_SINK || !full) others.push_back(full ? TextOf(InVideoRange(colours)) : text);
        if (direction == GST_PAD_SRC && !full) others.push_back(TextOf(InFullRange(colours)));
    }
    if (!others.empty()) WriteTexts(structure, "colorimetry", others);
    return !others.empty();
}

bool TellsColours(const GstStructure* structure, const GstVideoColorimetry& colours) {
    GstVideoColorimetry told;
    const gchar* text = gst_structure_get_string(structure, "colorimetry");
    return text != nullptr && gst_video_colorimetry_from_string(&told, text) != 0 &&
           gst_video_colorimetry_is_equal(&told, &colours) != 0;
}

/// Writes out the colours that a fixed source's size and tags stand for. Tags that leave the matrix open count as none.
void TagColours(GstCaps* source, GstStructure* output) {
    GstVideoInfo info;
    if (gst_caps_is_fixed(source) == 0 || gst_video_info_from_caps(&info, source) == 0) return;
    const GstVideoColorimetry colours = InVideoRange(info.colorimetry);
    if (!TellsColours(output, colours)) WriteText(output, "colorimetry", gst_video_colorimetry_to_string(&colours));
    if (gst_structure_has_field(output, "chroma-site") == 0 && info.chroma_site != GST_VIDEO_CHROMA_SITE_UNKNOWN)
        WriteText(output, "chroma-site", gst_video_chroma_site_to_string(info.chroma_site));
}

struct StructureFree {
    void operator()(GstStructure* structure) const { gst_structure_free(structure); }
};

bool IsInSystemMemory(GstCaps* caps, guint index) {
    return gst_caps_features_is_equal(gst_caps_get_features(caps, index), GST_CAPS_FEATURES_MEMORY_SYSTEM_MEMORY) != 0;
}

/// A structure for each pair of sides: lists of ranges in one structure are more than GStreamer can compare.
GstCaps* AppendOthers(GstCaps* others, GstPadDirection direction, GstCaps* caps, guint index, int32_t mode) {
    const GstStructure* given = gst_caps_get_structure(caps, index);
    const std::unique_ptr<GstStructure, StructureFree> ranged(gst_structure_copy(given));
    if (!MapRanges(direction, ranged.get())) return others;
    const bool forward = direction == GST_PAD_SINK;
    for (const Way& way : WaysOf(mode))
        for (const Match& width : MatchesOf(direction, way, &Size::width, given))
            for (const Match& height : MatchesOf(direction, way, &Size::height, given)) {
                if (!IsPossible(width, height, mode)) continue;
                GstStructure* other = gst_structure_copy(ranged.get());
                WriteSpan(other, "width", forward ? width.output : width.source);
                WriteSpan(other, "height", forward ? height.output : height.source);
                if (forward) TagColours(caps, other);
                others = gst_caps_merge_structure(others, other);
            }
    return others;
}

}  // namespace

GstCaps* TransformCaps(GstPadDirection direction, GstCaps* caps, int32_t mode) {
    if (gst_caps_is_any(caps) != 0) return gst_caps_ref(caps);
    GstCaps* others = gst_caps_new_empty();
    for (guint i = 0; i < gst_caps_get_size(caps); ++i)
        if (IsInSystemMemory(caps, i)) others = AppendOthers(others, direction, caps, i, mode);
    return others;
}

}  // namespace clarivex
