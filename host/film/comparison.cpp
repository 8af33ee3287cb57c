#include "host/comparison.h"

#include <algorithm>
#include <new>

#include "host/errors.h"
#include "host/film/av_objects.h"
#include "host/film/library_log.h"
#include "host/film_rules.h"
#include "host/words.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/imgutils.h>
}

namespace clarivex {

namespace {

constexpr const char* failure = "the pictures cannot be set beside each other";
constexpr int32_t mostPixelsASide = 32767;
constexpr int64_t mostPixels = int64_t{1} << 27;
constexpr int32_t smallestLetters = 10;  // pixels
constexpr int32_t largestLetters = 24;
constexpr int32_t lettersOfALabel = 10;  // "enlarged plainly" takes about so many heights of a letter across

PictureCrop CropOf(const ComparisonView& view, PictureSize picture) {
    const PictureCrop crop = view.crop.value_or(PictureCrop{picture, 0, 0});
    if (int64_t{crop.x} + crop.size.width > picture.width || int64_t{crop.y} + crop.size.height > picture.height)
        throw RunError("--crop " + SizeText(crop.size) + "+" + std::to_string(crop.x) + "+" + std::to_string(crop.y) +
                       " does not lie within the enhanced picture of " + SizeText(picture));
    return crop;
}

/// Size of each of the two parts before it is zoomed.
PictureSize PartSize(const ComparisonView& view, PictureSize crop) {
    if (view.layout == ComparisonLayout::side) return crop;
    if (crop.width < 2) throw RunError("a crop that is 1 wide has no halves; --layout side shows it");
    return {crop.width / 2, crop.height};
}

void CheckPixels(PictureSize part, int32_t zoom) {
    const int64_t width = int64_t{2} * part.width * zoom;
    const int64_t height = int64_t{part.height} * zoom;
    if (width > mostPixelsASide || height > mostPixelsASide || width * height > mostPixels)
        throw RunError("the comparison would have " + std::to_string(width) + "x" + std::to_string(height) +
                       " pixels, too many for one picture; --crop takes a part, --layout split halves the width");
}

int32_t HeightOfLetters(PictureSize zoomedPart) {
    return std::clamp(zoomedPart.height / 30, smallestLetters, largestLetters);
}

bool HasRoomForLabels(PictureSize zoomedPart) {
    const int32_t letters = HeightOfLetters(zoomedPart);
    return zoomedPart.width >= lettersOfALabel * letters && zoomedPart.height >= 4 * letters;
}

std::string EntryText(const char* name, PictureSize size) {
    return std::string("buffer@") + name + "=video_size=" + SizeText(size) +
           ":pix_fmt=yuv420p:time_base=1/1:pixel_aspect=1/1";
}

std::string LabelText(const char* words, PictureSize zoomedPart) {
    const int32_t letters = HeightOfLetters(zoomedPart);
    return std::string(",drawtext=font=sans:text='") + words + "':fontsize=" + std::to_string(letters) +
           ":fontcolor=white:box=1:boxcolor=black@0.6:boxborderw=4:x=8:y=h-" + std::to_string(letters + 10);
}

/// One of the two: to the size of the enhanced picture and to RGB in one step, then its part of the crop.
std::string PartText(const ComparedPictures& pictures, const ComparisonView& view, PictureSize part, int32_t x,
                     int32_t y) {
    const auto number = [](int32_t value) { return std::to_string(value); };
    return ",scale=w=" + number(pictures.enhancedSize.width) + ":h=" + number(pictures.enhancedSize.height) +
           ":flags=bicubic+accurate_rnd+full_chroma_int+full_chroma_inp:in_range=limited:in_color_matrix=" +
           ScaleMatrixName(pictures.colour.matrix) + ",format=rgb24,crop=" + number(part.width) + ":" +
           number(part.height) + ":" + number(x) + ":" + number(y) + ":exact=1,scale=iw*" + number(view.zoom) + ":ih*" +
           number(view.zoom) + ":flags=neighbor";
}

/// The whole graph in the libraries' words.
std::string GraphText(const ComparedPictures& pictures, const ComparisonView& view, bool labelled) {
    const PictureCrop crop = CropOf(view, pictures.enhancedSize);
    const PictureSize part = PartSize(view, crop.size);
    CheckPixels(part, view.zoom);
    const PictureSize zoomed{part.width * view.zoom, part.height * view.zoom};
    const bool isSplit = view.layout == ComparisonLayout::split;
    const int32_t right = crop.x + (isSplit ? part.width : 0);
    const bool enlarges = pictures.plainSize != pictures.enhancedSize;
    std::string text = EntryText("plain", pictures.plainSize) + PartText(pictures, view, part, crop.x, crop.y);
    if (labelled) text += LabelText(enlarges ? "enlarged plainly" : "as it was", zoomed);
    text += "[left];" + EntryText("enhanced", pictures.enhancedSize) + PartText(pictures, view, part, right, crop.y);
    if (labelled) text += LabelText("enhanced", zoomed);
    text += "[right];[left][right]hstack";
    if (isSplit) text += ",drawbox=x=" + std::to_string(zoomed.width - 1) + ":y=0:w=2:h=ih:color=white:t=fill";
    return text + ",format=rgb24,buffersink@both";
}

AvPointer<AVFilterGraph> MakeGraph(const std::string& text) {
    AvPointer<AVFilterGraph> graph(avfilter_graph_alloc());
    if (!graph) throw std::bad_alloc();
    CheckAv(avfilter_graph_parse_ptr(graph.get(), text.c_str(), nullptr, nullptr, nullptr), failure);
    CheckAv(avfilter_graph_config(graph.get(), nullptr), failure);
    return graph;
}

/// With labels if they can be had.
AvPointer<AVFilterGraph> MakeGraph(const ComparedPictures& pictures, const ComparisonView& view, Report& report) {
    const std::string unlabelled = GraphText(pictures, view, false);
    const PictureSize part = PartSize(view, CropOf(view, pictures.enhancedSize).size);
    if (!HasRoomForLabels({part.width * view.zoom, part.height * view.zoom})) {
        report.Note("the pictures are too small to bear labels: plain at the left, enhanced at the right");
        return MakeGraph(unlabelled);
    }
    try {
        return MakeGraph(GraphText(pictures, view, true));
    } catch (const RunError&) {
        report.Note("without a font there are no labels: plain at the left, enhanced at the right");
        return MakeGraph(unlabelled);
    }
}

void PutPicture(AVFilterGraph& graph, const char* entry, PictureSize size, const PicturePlanes& planes) {
    const AvPointer<AVFrame> frame = MakeAvFrame();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = size.width;
    frame->height = size.height;
    frame->pts = 0;
    CheckAv(av_frame_get_buffer(frame.get(), 0), failure);
    for (size_t plane = 0; plane < planes.size(); ++plane) {
        const int width = plane == 0 ? size.width : size.ChromaWidth();
        const int height = plane == 0 ? size.height : size.ChromaHeight();
        av_image_copy_plane(frame->data[plane], frame->linesize[plane], planes[plane].data(), width, width, height);
    }
    AVFilterContext* const source = avfilter_graph_get_filter(&graph, entry);
    CheckAv(av_buffersrc_add_frame(source, frame.get()), failure);
    CheckAv(av_buffersrc_add_frame(source, nullptr), failure);
}

std::vector<uint8_t> PngOf(const AVFrame& picture) {
    const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    if (!codec) throw RunError("FFmpeg's libraries on this system cannot write PNG files");
    const AvPointer<AVCodecContext> encoder(avcodec_alloc_context3(codec));
    if (!encoder) throw std::bad_alloc();
    encoder->width = picture.width;
    encoder->height = picture.height;
    encoder->pix_fmt = AV_PIX_FMT_RGB24;
    encoder->time_base = {1, 1};
    CheckAv(avcodec_open2(encoder.get(), codec, nullptr), failure);
    CheckAv(avcodec_send_frame(encoder.get(), &picture), failure);
    CheckAv(avcodec_send_frame(encoder.get(), nullptr), failure);
    const AvPointer<AVPacket> packet = MakeAvPacket();
    CheckAv(avcodec_receive_packet(encoder.get(), packet.get()), failure);
    return {packet->data, packet->data + packet->size};
}

}  // namespace

std::vector<uint8_t> ComparisonPng(const ComparedPictures& pictures, const ComparisonView& view, Report& report) {
    CatchLibraryLog();
    const AvPointer<AVFilterGraph> graph = MakeGraph(pictures, view, report);
    PutPicture(*graph, "buffer@plain", pictures.plainSize, pictures.plain);
    PutPicture(*graph, "buffer@enhanced", pictures.enhancedSize, pictures.enhanced);
    const AvPointer<AVFrame> both = MakeAvFrame();
    CheckAv(av_buffersink_get_frame(avfilter_graph_get_filter(graph.get(), "buffersink@both"), both.get()), failure);
    return PngOf(*both);
}

}  // namespace clarivex
