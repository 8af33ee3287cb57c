#include "host/film/film_description.h"

#include <algorithm>
#include <cmath>

#include "host/errors.h"
#include "host/player.h"
#include "host/words.h"

namespace clarivex {

namespace {

constexpr double assumedFrameSeconds = 0.04;  // where nothing tells of a rate

bool IsHighDynamicRange(AVColorTransferCharacteristic transfer) {
    return transfer == AVCOL_TRC_SMPTE2084 || transfer == AVCOL_TRC_ARIB_STD_B67;
}

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

void RefuseHighDynamicRange(AVColorTransferCharacteristic transfer, const std::string& path) {
    if (!IsHighDynamicRange(transfer)) return;
    throw RunError(std::string("is of high dynamic range (") + (transfer == AVCOL_TRC_SMPTE2084 ? "PQ" : "HLG") +
                   "), which would come out grey and dull; this maps it first: ffmpeg -i '" + PrintablePath(path) +
                   "' -vf zscale=t=linear:npl=100,format=gbrpf32le,zscale=p=bt709,tonemap=hable:desat=0,"
                   "zscale=t=bt709:m=bt709:r=tv,format=yuv420p -c:a copy mapped.mkv");
}

void CheckPictureSize(PictureSize size) {
    const std::string text = "pictures of " + SizeText(size);
    if (size.width > largestPictureSide || size.height > largestPictureSide)
        throw RunError(text + " are too large: width and height must be at most " + std::to_string(largestPictureSide));
    if (size.width < smallestSide || size.height < smallestSide)
        throw RunError(text + " are too small: width and height must be at least " + std::to_string(smallestSide));
}

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
