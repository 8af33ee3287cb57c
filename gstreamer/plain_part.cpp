#include "gstreamer/plain_part.h"

#include <algorithm>
#include <cmath>

namespace clarivex {
namespace {

constexpr uint8_t light = 235;
constexpr uint8_t dark = 16;
constexpr uint8_t neutralChroma = 128;

/// Columns of the line, half of them light: even, and more on large pictures, so that it is seen there too.
int LineColumns(const GstVideoInfo& output) { return 2 * std::max(1, (output.width + 480) / 960); }

/// The first column behind the plain part. Enlarged parts end where a pair of the source's columns does: so they keep to the
/// picture's scale, wherever they end.
int PlainColumns(double part, const GstVideoInfo& source, const GstVideoInfo& output) {
    if (part >= 1) return output.width;
    const int step = source.width == output.width ? 2 : 6;
    return static_cast<int>(std::lround(part * output.width)) / step * step;
}

bool AreLaidOutAlike(const GstVideoInfo& a, const GstVideoInfo& b) {
    return GST_VIDEO_INFO_FORMAT(&a) == GST_VIDEO_INFO_FORMAT(&b) && a.width == b.width && a.height == b.height;
}

/// Samples of the source that so many of the output show, on an axis.
int Shown(int outputSamples, int source, int output) {
    return source == output ? outputSamples : std::min(source, (outputSamples * 2 + 1) / 3);
}

/// Sets columns of a component from `first` up to `end`, told in samples of luma.
void FillColumns(GstVideoFrame& frame, guint component, int first, int end, uint8_t value) {
    const GstVideoFormatInfo* format = frame.info.finfo;
    const int step = GST_VIDEO_FRAME_COMP_PSTRIDE(&frame, component);
    auto* row = static_cast<uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&frame, component));
    const int left = first >> GST_VIDEO_FORMAT_INFO_W_SUB(format, component);
    const int right = GST_VIDEO_FORMAT_INFO_SCALE_WIDTH(format, component, end);
    for (int y = 0; y < GST_VIDEO_FRAME_COMP_HEIGHT(&frame, component); ++y) {
        for (int x = left; x < right; ++x) row[x * step] = value;
        row += GST_VIDEO_FRAME_COMP_STRIDE(&frame, component);
    }
}

void DrawLine(GstVideoFrame& frame, int first) {
    const int width = frame.info.width;
    const int columns = LineColumns(frame.info);
    const int middle = std::min(first + columns / 2, width);
    const int end = std::min(first + columns, width);
    FillColumns(frame, GST_VIDEO_COMP_Y, first, middle, light);
    FillColumns(frame, GST_VIDEO_COMP_Y, middle, end, dark);
    for (const guint chroma : {GST_VIDEO_COMP_U, GST_VIDEO_COMP_V})
        FillColumns(frame, chroma, first, end, neutralChroma);
}

}  // namespace

/// Makes the converter for so many columns of such frames, unless it is there.
void PlainPart::Follow(int columns, const GstVideoInfo& source, const GstVideoInfo& output) {
    if (converter && columns == width && AreLaidOutAlike(source, sourceInfo) && AreLaidOutAlike(output, outputInfo))
        return;
    sourceInfo = source;
    outputInfo = output;
    width = columns;
    GstVideoInfo plain = source;  // the output's colours are the source's, told more exactly
    plain.colorimetry = output.colorimetry;
    plain.chroma_site = output.chroma_site;
    GstStructure* rule = gst_structure_new(
        "PlainPart", GST_VIDEO_CONVERTER_OPT_SRC_WIDTH, G_TYPE_INT, Shown(columns, source.width, output.width),
        GST_VIDEO_CONVERTER_OPT_SRC_HEIGHT, G_TYPE_INT, Shown(output.height, source.height, output.height),
        GST_VIDEO_CONVERTER_OPT_DEST_WIDTH, G_TYPE_INT, columns, GST_VIDEO_CONVERTER_OPT_FILL_BORDER, G_TYPE_BOOLEAN,
        FALSE, GST_VIDEO_CONVERTER_OPT_RESAMPLER_METHOD, GST_TYPE_VIDEO_RESAMPLER_METHOD,
        GST_VIDEO_RESAMPLER_METHOD_CUBIC, nullptr);
    converter.reset(gst_video_converter_new(&plain, &output, rule));
}

void PlainPart::Draw(double part, GstVideoFrame& source, GstVideoFrame& output) {
    const int columns = PlainColumns(part, source.info, output.info);
    if (columns > 0) {
        Follow(columns, source.info, output.info);
        gst_video_converter_frame(converter.get(), &source, &output);
    }
    if (columns < output.info.width) DrawLine(output, columns);
}

}  // namespace clarivex
