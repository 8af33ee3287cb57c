#include "host/film/picture_chain.h"

#include <cmath>
#include <cstdio>
#include <tuple>

#include "host/errors.h"
#include "host/film_rules.h"
#include "host/video_colour.h"
#include "host/words.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
}

namespace clarivex {

namespace {

/// The full-range twins of plain formats, an old way to state the range.
AVPixelFormat WithoutRange(AVPixelFormat format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ420P: return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ422P: return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ444P: return AV_PIX_FMT_YUV444P;
        case AV_PIX_FMT_YUVJ440P: return AV_PIX_FMT_YUV440P;
        case AV_PIX_FMT_YUVJ411P: return AV_PIX_FMT_YUV411P;
        default: return format;
    }
}

const AVPixFmtDescriptor& DescriptorOf(AVPixelFormat format) {
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    if (!descriptor) throw RunError("its decoder gives samples of an unknown kind");
    return *descriptor;
}

bool IsRgb(const AVPixFmtDescriptor& descriptor) {
    return (descriptor.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

bool IsGrey(const AVPixFmtDescriptor& descriptor) { return descriptor.nb_components <= 2 && !IsRgb(descriptor); }

bool IsFullRange(const DecodedFormat& format) {
    const AVPixFmtDescriptor& descriptor = DescriptorOf(format.samples);
    if (IsRgb(descriptor) || descriptor.comp[0].depth == 1) return true;
    return format.range == AVCOL_RANGE_JPEG || WithoutRange(format.samples) != format.samples;
}

std::string KindText(AVPixelFormat format) {
    const AVPixFmtDescriptor& descriptor = DescriptorOf(format);
    const std::string depth = std::to_string(descriptor.comp[0].depth) + "-bit ";
    const auto is = [&](int across, int down) {
        return descriptor.log2_chroma_w == across && descriptor.log2_chroma_h == down;
    };
    if (IsRgb(descriptor)) return "RGB";
    if (IsGrey(descriptor)) return depth + "grey";
    return depth + (is(1, 1) ? "4:2:0" : is(1, 0) ? "4:2:2" : is(0, 0) ? "4:4:4" : is(0, 1) ? "4:4:0" : "4:1:1");
}

/// What a person would call something else, not only an order of the same samples.
bool DiffersInKind(AVPixelFormat format) { return KindText(format) != KindText(AV_PIX_FMT_YUV420P); }

bool HasAlpha(AVPixelFormat format) { return (DescriptorOf(format).flags & AV_PIX_FMT_FLAG_ALPHA) != 0; }

/// The filters that undo a display matrix of quarter turns, mirrored or not.
std::vector<std::string> TurnsOf(const int32_t* matrix) {
    const double degrees = matrix ? -av_display_rotation_get(matrix) : 0.0;  // clockwise
    if (std::isnan(degrees)) return {};
    std::vector<std::string> turns;
    switch ((std::lround(degrees / 90.0) % 4 + 4) % 4) {
        case 1: turns.emplace_back(matrix[3] > 0 ? "transpose=cclock_flip" : "transpose=clock"); break;
        case 2:
            if (matrix[0] < 0) turns.emplace_back("hflip");
            if (matrix[4] < 0) turns.emplace_back("vflip");
            break;
        case 3: turns.emplace_back(matrix[3] < 0 ? "transpose=clock_flip" : "transpose=cclock"); break;
        default:
            if (matrix && matrix[4] < 0) turns.emplace_back("vflip");
    }
    return turns;
}

/// The matrix of luma and colour differences: what is told, or what a player assumes of so many lines.
int MatrixOf(const DecodedFormat& format) {
    const bool told = format.matrix != AVCOL_SPC_UNSPECIFIED && format.matrix != AVCOL_SPC_RGB;
    return told ? format.matrix : WithAssumedColour({}, format.size.height).matrix;
}

}  // namespace

bool DecodedFormat::operator==(const DecodedFormat& other) const {
    const auto values = [](const DecodedFormat& f) {
        return std::tuple(f.size.width, f.size.height, f.samples, f.range, f.matrix, f.interlaced);
    };
    return values(*this) == values(other);
}

DecodedFormat FormatOf(const AVFrame& frame) {
    return {{frame.width, frame.height}, static_cast<AVPixelFormat>(frame.format),
            frame.color_range,           frame.colorspace,
            frame.sample_aspect_ratio,   frame.interlaced_frame != 0};
}

ConversionPlan PlanConversion(const DecodedFormat& format, PictureSize size, bool deinterlace, const int32_t* matrix) {
    ConversionPlan plan;
    plan.size = size;
    plan.turns = TurnsOf(matrix);
    plan.deinterlaces = deinterlace && format.interlaced;
    if (plan.deinterlaces) plan.reasons.emplace_back(deinterlaceNote);
    const AVPixelFormat samples = WithoutRange(format.samples);
    if (HasAlpha(samples)) plan.reasons.emplace_back("transparency is left out");
    if (DiffersInKind(samples)) plan.reasons.push_back(KindText(samples) + " samples are brought to 8-bit 4:2:0");
    if (IsFullRange(format) && !IsRgb(DescriptorOf(samples)))
        plan.reasons.emplace_back("full range is brought to video range");
    if (format.size != size)
        plan.reasons.push_back("pictures of " + SizeText(format.size) + " are brought to the first size, " +
                               SizeText(size));
    plan.converts = samples != AV_PIX_FMT_YUV420P || IsFullRange(format) || format.size != size;
    if (!plan.turns.empty()) plan.reasons.emplace_back("pictures are turned upright");
    return plan;
}

std::string FilterText(const ConversionPlan& plan, const DecodedFormat& format) {
    std::string text;
    const auto add = [&](const std::string& filter) { text += (text.empty() ? "" : ",") + filter; };
    if (plan.deinterlaces) add(deinterlaceFilter);
    if (plan.converts) {
        const bool isRgb = IsRgb(DescriptorOf(format.samples));
        add(ScaleFilter(plan.size, IsFullRange(format)) +
            (isRgb ? std::string(":out_color_matrix=") + ScaleMatrixName(MatrixOf(format)) : ""));
    }
    for (const std::string& turn : plan.turns) add(turn);
    if (plan.converts) add("format=yuv420p");
    return text.empty() ? "null" : text;
}

PictureChain::PictureChain(const ConversionPlan& plan, const DecodedFormat& format, AVRational timeBase)
    : graph(avfilter_graph_alloc()) {
    if (!graph) throw std::bad_alloc();
    char entryText[256];
    std::snprintf(entryText, sizeof entryText, "video_size=%dx%d:pix_fmt=%d:time_base=%d/%d:pixel_aspect=%d/%d",
                  format.size.width, format.size.height, format.samples, timeBase.num, timeBase.den,
                  format.sampleAspect.num, format.sampleAspect.den > 0 ? format.sampleAspect.den : 1);
    constexpr const char* failure = "its pictures cannot be converted";
    CheckAv(avfilter_graph_create_filter(&entry, avfilter_get_by_name("buffer"), "in", entryText, nullptr, graph.get()),
            failure);
    CheckAv(
        avfilter_graph_create_filter(&end, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, graph.get()),
        failure);
    AVFilterInOut* open[2] = {avfilter_inout_alloc(), avfilter_inout_alloc()};
    if (open[0] && open[1]) {
        *open[0] = {av_strdup("in"), entry, 0, nullptr};
        *open[1] = {av_strdup("out"), end, 0, nullptr};
    }
    const int parsed = open[0] && open[1] ? avfilter_graph_parse_ptr(graph.get(), FilterText(plan, format).c_str(),
                                                                     &open[1], &open[0], nullptr)
                                          : AVERROR(ENOMEM);
    for (AVFilterInOut*& one : open) avfilter_inout_free(&one);
    CheckAv(parsed, failure);
    CheckAv(avfilter_graph_config(graph.get(), nullptr), failure);
}

void PictureChain::Put(AVFrame* frame) {
    CheckAv(av_buffersrc_add_frame_flags(entry, frame, AV_BUFFERSRC_FLAG_KEEP_REF), "its pictures cannot be converted");
}

bool PictureChain::Take(AVFrame& frame) {
    const int result = av_buffersink_get_frame(end, &frame);
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return false;
    CheckAv(result, "its pictures cannot be converted");
    return true;
}

AVRational PictureChain::TimeBase() const { return av_buffersink_get_time_base(end); }

}  // namespace clarivex
