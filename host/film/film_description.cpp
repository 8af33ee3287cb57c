#include "host/film/film_description.h"

#include <algorithm>
#include <cmath>

namespace clarivex {

namespace {

constexpr double assumedFrameSeconds = 0.04;  // where nothing tells of a rate

ChromaSite SiteOf(AVChromaLocation location) {
    switch (location) {
        case AVCHROMA_LOC_LEFT: return ChromaSite::left;
        case AVCHROMA_LOC_CENTER: return ChromaSite::center;
        case AVCHROMA_LOC_TOPLEFT: return ChromaSite::topLeft;
        default: return ChromaSite::unknown;
    }
}

/// What the decoder tells, or else the container.
template <class Code>
int32_t Told(Code byFrame, Code byContainer) {
    return byFrame != VideoColour::untold ? byFrame : byContainer;
}

VideoColour ColourOf(const AVFrame& frame, const AVCodecParameters& parameters) {
    VideoColour colour{Told(frame.color_primaries, parameters.color_primaries),
                       Told(frame.color_trc, parameters.color_trc), Told(frame.colorspace, parameters.color_space),
                       SiteOf(frame.chroma_location)};
    if (colour.matrix == AVCOL_SPC_RGB) colour.matrix = VideoColour::untold;  // the conversion takes the assumed one
    return WithAssumedColour(colour, frame.height);
}

/// How long the part wanted plays; nothing where that is not known.
std::optional<double> SecondsOf(const AVFormatContext& container, const PartOptions& part) {
    std::optional<double> seconds;
    if (container.duration != AV_NOPTS_VALUE)
        seconds = std::max(0.0, static_cast<double>(container.duration - part.start) / AV_TIME_BASE);
    if (part.duration == INT64_MAX) return seconds;
    const double wanted = static_cast<double>(part.duration) / AV_TIME_BASE;
    return std::min(seconds.value_or(wanted), wanted);
}

}  // namespace

Ratio RatioOf(AVRational value) {
    if (value.num <= 0 || value.den <= 0) return {};
    return {static_cast<uint32_t>(value.num), static_cast<uint32_t>(value.den)};
}

VideoInfo DescribeFilm(const FilmOrigin& origin, AVFrame& first, const PartOptions& part) {
    AVStream& stream = origin.VideoStream();
    VideoInfo info;
    info.frameRate = RatioOf(av_guess_frame_rate(origin.container.get(), &stream, &first));
    info.timeBase = RatioOf(stream.time_base);
    info.colour = ColourOf(first, *stream.codecpar);
    info.seconds = SecondsOf(*origin.container, part);
    if (part.frames != UINT64_MAX) info.frames = part.frames;
    return info;
}

int64_t UsualFrameLength(const VideoInfo& info) {
    const double seconds = info.frameRate.Known()
                               ? static_cast<double>(info.frameRate.denominator) / info.frameRate.numerator
                               : assumedFrameSeconds;
    return std::max<int64_t>(1, std::llround(seconds * info.timeBase.denominator / info.timeBase.numerator));
}

}  // namespace clarivex
