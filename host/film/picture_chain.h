// From what a decoder gives to 8-bit 4:2:0 in video range, progressive and upright: a chain of FFmpeg's filters.
#pragma once

#include <string>
#include <vector>

#include "host/film/av_objects.h"
#include "host/picture.h"

namespace clarivex {

/// How decoded pictures look, as far as the chain depends on it.
struct DecodedFormat {
    PictureSize size;
    AVPixelFormat samples = AV_PIX_FMT_NONE;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    AVRational sampleAspect{0, 1};
    bool interlaced = false;

    bool operator==(const DecodedFormat& other) const;
};

DecodedFormat FormatOf(const AVFrame& frame);

/// What is done to pictures of a format.
struct ConversionPlan {
    bool deinterlaces = false;
    bool converts = false;             ///< samples, range or size
    PictureSize size;                  ///< before it is turned
    std::vector<std::string> turns;    ///< filters that set it upright
    std::vector<std::string> reasons;  ///< for the notes: "10-bit 4:2:2 samples are brought to 8-bit 4:2:0"
};

/// `matrix` is a display matrix as containers hold it, nine numbers, or null. `size` is what pictures come to before they
/// are turned. Pure.
ConversionPlan PlanConversion(const DecodedFormat& format, PictureSize size, bool deinterlace, const int32_t* matrix);

/// The plan as a description of filters that avfilter_graph_parse takes; "null" where nothing is done.
std::string FilterText(const ConversionPlan& plan, const DecodedFormat& format);

class PictureChain {
public:
    /// Throws RunError when the filters cannot be set up.
    PictureChain(const ConversionPlan& plan, const DecodedFormat& format, AVRational timeBase);

    /// Hands in a decoded picture, whose reference is taken, or null behind the last.
    void Put(AVFrame* frame);

    /// Gives the next picture, if one is ready. Its time is in TimeBase steps.
    bool Take(AVFrame& frame);

    AVRational TimeBase() const;

private:
    AvPointer<AVFilterGraph> graph;
    AVFilterContext* entry = nullptr;
    AVFilterContext* end = nullptr;
};

}  // namespace clarivex
