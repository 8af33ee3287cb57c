#include "host/film/film_reader.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/errors.h"
#include "host/film/library_log.h"
#include "host/player.h"
#include "host/run_figures.h"
#include "host/words.h"
#include "platform/console.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/mathematics.h>
}

namespace clarivex {

namespace {

constexpr size_t mostCompanions = 256;    // that wait for a picture
constexpr uint64_t mostDamageNotes = 10;  // of one film; what follows is only counted
constexpr double companionsBehind = 2.0;  // seconds behind the part's end in which the other streams may still lag
constexpr double missingAtTheEnd = 2.0;   // seconds; files end this early without being cut short
constexpr AVRational microseconds{1, AV_TIME_BASE};

/// Streams whose packets a writer may copy.
bool IsCopied(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    return type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_SUBTITLE;
}

int64_t StartOf(const AVPacket& packet) { return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts; }

bool IsHighDynamicRange(AVColorTransferCharacteristic transfer) {
    return transfer == AVCOL_TRC_SMPTE2084 || transfer == AVCOL_TRC_ARIB_STD_B67;
}

void RefuseHighDynamicRange(AVColorTransferCharacteristic transfer, const std::string& path) {
    if (!IsHighDynamicRange(transfer)) return;
    throw RunError(std::string("is of high dynamic range (") + (transfer == AVCOL_TRC_SMPTE2084 ? "PQ" : "HLG") +
                   "), which would come out grey and dull; this maps it first: ffmpeg -i '" + PrintablePath(path) +
                   "' -vf zscale=t=linear:npl=100,format=gbrpf32le,zscale=p=bt709,tonemap=hable:desat=0,"
                   "zscale=t=bt709:m=bt709:r=tv,format=yuv420p -c:a copy mapped.mkv");
}

void CheckSize(PictureSize size) {
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

}  // namespace

FilmReader::FilmReader(const FilmRequest& request, Report& report)
    : told(report),
      part(request.part),
      deinterlaces(request.deinterlacing == Deinterlacing::automatic),
      withCompanions(request.withCompanions),
      origin(std::make_shared<FilmOrigin>(request)),
      clockJumps(*origin->container) {
    const AVCodecParameters& parameters = *origin->VideoStream().codecpar;
    RefuseHighDynamicRange(parameters.color_trc, request.path);
    if (parameters.width > 0 && parameters.height > 0) CheckSize({parameters.width, parameters.height});
    OpenDecoder();
    while (pictureIsReady == false)
        if (FindPicture() == Step::end) throw RunError(NoPictureText());
    RefuseHighDynamicRange(picture->color_trc, request.path);
}

std::string FilmReader::NoPictureText() const {
    if (firstSize.width > 0) return "holds no picture in the part that --start and --duration take";
    return "holds no picture that can be decoded" + (damagedPlaces > 0 ? "; " + DamageText(damagedPlaces) : "");
}

void FilmReader::OpenDecoder() {
    const AVStream& stream = origin->VideoStream();
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec) throw RunError("its video cannot be decoded: FFmpeg's libraries on this system have no decoder for it");
    decoder.reset(avcodec_alloc_context3(codec));
    if (!decoder) throw std::bad_alloc();
    CheckAv(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "its video cannot be decoded");
    decoder->pkt_timebase = stream.time_base;
    decoder->thread_count = 0;  // as many as there are processor cores
    decoder->max_pixels = int64_t{largestPictureSide} * largestPictureSide;
    CheckAv(avcodec_open2(decoder.get(), codec, nullptr), "its video cannot be decoded");
}

/// What is known once the first picture has been decoded; the frame is as the decoder gave it.
void FilmReader::DescribeVideo(const AVFrame& first) {
    AVStream& stream = origin->VideoStream();
    const AVFormatContext& container = *origin->container;
    firstSize = {first.width, first.height};
    CheckSize(firstSize);
    info.frameRate = RatioOf(av_guess_frame_rate(origin->container.get(), &stream, decoded.get()));
    info.timeBase = RatioOf(stream.time_base);
    info.colour = ColourOf(first, *stream.codecpar);
    info.origin = origin;
    if (container.duration != AV_NOPTS_VALUE)
        info.seconds = std::max<double>(0.0, static_cast<double>(container.duration - part.start) / AV_TIME_BASE);
    if (part.duration != INT64_MAX) {
        const double wanted = static_cast<double>(part.duration) / AV_TIME_BASE;
        info.seconds = std::min(info.seconds.value_or(wanted), wanted);
        partEnd = std::max<int64_t>(1, av_rescale_q(part.duration, microseconds, stream.time_base));
    }
    if (part.frames != UINT64_MAX) info.frames = part.frames;
    const double usual =
        info.frameRate.Known()
            ? av_q2d({static_cast<int>(info.frameRate.denominator), static_cast<int>(info.frameRate.numerator)})
            : 0.04;
    timer.emplace(std::max<int64_t>(1, std::llround(usual / av_q2d(stream.time_base))));
}

bool FilmReader::Read(VideoFrame& frame, const WritablePlanes& planes) {
    frame.hasPicture = false;
    frame.companions.clear();
    const Step step = partEnded ? Step::end : FindPicture();
    if (step == Step::picture) GivePicture(frame, planes);
    const bool more = step != Step::end || ReadCompanionsBehind();
    std::swap(frame.companions, companions);
    return more || !frame.companions.empty();
}

/// The next picture that lies in the part wanted, in `picture`.
FilmReader::Step FilmReader::FindPicture() {
    while (!pictureIsReady) {
        const Step step = NextPicture();
        if (step != Step::picture) return step;
        const AVRational base = (emptiedChain ? emptiedChain : chain)->TimeBase();
        const AVStream& stream = origin->VideoStream();
        const bool isTold = picture->pts != AV_NOPTS_VALUE;
        const int64_t firstMoment = av_rescale_q(origin->firstTime, microseconds, stream.time_base);
        const int64_t start = isTold ? av_rescale_q(picture->pts, base, stream.time_base) - firstMoment : 0;
        const uint64_t madeUp = timer->MadeUp();
        pictureStart = timer->Next(isTold ? std::optional(start) : std::nullopt) -
                       av_rescale_q(part.start, microseconds, stream.time_base);
        if (madeUp == 0 && timer->MadeUp() == 1)
            told.Note("time stamps that are missing or do not grow are made up from the frame rate");
        pictureIsReady = part.start == 0 || pictureStart >= 0;
    }
    if (info.size.width == 0) {
        info.size = {picture->width, picture->height};
        info.sampleAspect = RatioOf(picture->sample_aspect_ratio);
    }
    if (framesGiven < part.frames && pictureStart < partEnd) return Step::picture;
    partEnd = std::min(partEnd, pictureStart);
    partEnded = true;
    return Step::end;
}

FilmReader::Step FilmReader::NextPicture() {
    for (;;) {
        av_frame_unref(picture.get());
        if (TakeFromChains()) return Step::picture;
        if (decoderEnded || NotedSignal() != 0) return Step::end;
        if (companions.size() >= mostCompanions && info.size.width != 0) return Step::companions;
        if (!DecodeMore() && decoderEnded && chain) chain->Put(nullptr);
    }
}

bool FilmReader::TakeFromChains() {
    if (emptiedChain && emptiedChain->Take(*picture)) return true;
    emptiedChain.reset();
    return chain && chain->Take(*picture);
}

/// Decodes a picture into the chain, or reads a packet; false when no picture came of it.
bool FilmReader::DecodeMore() {
    const int result = avcodec_receive_frame(decoder.get(), decoded.get());
    if (result == 0) {
        TakeDecoded();
        return true;
    }
    if (result == AVERROR_EOF)
        decoderEnded = true;
    else if (result == AVERROR(EAGAIN))
        ReadPacket();
    else
        NoteDamage(packet->pts, "a picture could not be decoded: " + AvErrorText(result));
    return false;
}

void FilmReader::TakeDecoded() {
    const bool isFirst = firstSize.width == 0;
    decoded->sample_aspect_ratio =
        av_guess_sample_aspect_ratio(origin->container.get(), &origin->VideoStream(), decoded.get());
    decoded->pts = decoded->best_effort_timestamp;
    if (isFirst) DescribeVideo(*decoded);
    if (decoded->decode_error_flags != 0 || (decoded->flags & AV_FRAME_FLAG_CORRUPT) != 0)
        NoteDamage(decoded->pts, "a damaged picture was mended from its neighbours");
    DecodedFormat format = FormatOf(*decoded);
    interlacedSeen = interlacedSeen || format.interlaced;
    format.interlaced = interlacedSeen && deinterlaces;
    if (!chainFormat || !(format == *chainFormat)) BuildChain(format);
    chain->Put(decoded.get());
    av_frame_unref(decoded.get());
}

/// Pictures still in the chain before come first.
void FilmReader::BuildChain(const DecodedFormat& format) {
    AVStream& stream = origin->VideoStream();
    size_t matrixBytes = 0;
    const uint8_t* const matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &matrixBytes);
    const bool isWhole = matrix && matrixBytes >= 9 * sizeof(int32_t);
    const ConversionPlan plan =
        PlanConversion(format, firstSize, deinterlaces, isWhole ? reinterpret_cast<const int32_t*>(matrix) : nullptr);
    if (chain) chain->Put(nullptr);
    emptiedChain = std::exchange(chain, std::make_unique<PictureChain>(plan, format, stream.time_base));
    chainFormat = format;
    for (const std::string& reason : plan.reasons) {
        if (std::find(reasonsTold.begin(), reasonsTold.end(), reason) != reasonsTold.end()) continue;
        reasonsTold.push_back(reason);
        told.Note(framesGiven == 0 ? reason : "at " + TimeText(SecondsAt(decoded->pts)) + ": " + reason);
    }
}

/// The container's next packet in `packet`, or an error code.
int FilmReader::TakePacket() {
    av_packet_unref(packet.get());
    const int result = av_read_frame(origin->container.get(), packet.get());
    if (result < 0) return result;
    const AVStream& stream = *origin->container->streams[packet->stream_index];
    if (clockJumps.Mend(*packet, stream) && !std::exchange(clockJumped, true))
        told.Note("behind " + TimeText(lastPacketEnd) + " the time stamps begin anew; they are made to go on");
    const int64_t start = StartOf(*packet);
    if (start != AV_NOPTS_VALUE)
        lastPacketEnd =
            std::max(lastPacketEnd, static_cast<double>(start + packet->duration) * av_q2d(stream.time_base) -
                                        static_cast<double>(origin->firstTime) / AV_TIME_BASE);
    return result;
}

void FilmReader::ReadPacket() {
    if (inputEnded) return SendToDecoder(nullptr);
    const int result = TakePacket();
    if (result < 0) return EndInput(result);
    if (packet->stream_index != origin->videoIndex) return KeepCompanion();
    if ((packet->flags & AV_PKT_FLAG_CORRUPT) != 0) NoteDamage(StartOf(*packet), "the container is damaged");
    SendToDecoder(packet.get());
}

void FilmReader::EndInput(int reason) {
    inputEnded = true;
    if (NotedSignal() != 0) return;
    if (reason != AVERROR_EOF && reason != AVERROR_EXIT)
        return NoteDamage(AV_NOPTS_VALUE,
                          "nothing can be read behind " + TimeText(lastPacketEnd) + ": " + AvErrorText(reason));
    const std::optional<double> end = origin->StatedEnd();
    if (end && lastPacketEnd + missingAtTheEnd < *end)
        NoteDamage(AV_NOPTS_VALUE, "ends at " + TimeText(lastPacketEnd) + ", but should play for " + TimeText(*end) +
                                       ": it was cut short");
}

void FilmReader::SendToDecoder(const AVPacket* read) {
    const int result = avcodec_send_packet(decoder.get(), read);
    if (result < 0 && result != AVERROR_EOF && result != AVERROR(EAGAIN))
        NoteDamage(read ? read->pts : AV_NOPTS_VALUE, "left out, it could not be decoded: " + AvErrorText(result));
}

/// Whether a packet, which has a time, lies in the part wanted. Subtitles that stand at one of its ends are cut.
bool FilmReader::CutToPart(AVPacket& companion, const AVStream& stream) const {
    const AVRational pictureBase = origin->VideoStream().time_base;
    const bool isSubtitle = stream.codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE;
    const int64_t partStart = av_rescale_q(origin->PartStart(), microseconds, stream.time_base);
    int64_t start = StartOf(companion) - partStart;
    if (av_compare_ts(start, stream.time_base, partEnd, pictureBase) >= 0) return false;
    if (part.start > 0 && start < 0) {
        if (!isSubtitle || start + companion.duration <= 0) return false;
        companion.duration += start;
        companion.pts = companion.dts = partStart;
        start = 0;
    }
    if (isSubtitle && partEnd != INT64_MAX)
        companion.duration = std::min(companion.duration, av_rescale_q(partEnd, pictureBase, stream.time_base) - start);
    return true;
}

/// Keeps a packet of another stream if that is copied and it lies in the part wanted.
void FilmReader::KeepCompanion() {
    const AVStream& stream = *origin->container->streams[packet->stream_index];
    if (!withCompanions || !IsCopied(stream)) return;
    if (StartOf(*packet) != AV_NOPTS_VALUE && !CutToPart(*packet, stream)) return;
    AvPointer<AVPacket> kept = MakeAvPacket();
    av_packet_move_ref(kept.get(), packet.get());
    companions.emplace_back(std::move(kept));
}

/// Behind the last picture wanted: packets of other streams that belong to its time. False when all were read.
bool FilmReader::ReadCompanionsBehind() {
    if (!withCompanions || !partEnded) return false;
    const AVRational base = origin->VideoStream().time_base;
    const double end = static_cast<double>(part.start) / AV_TIME_BASE + static_cast<double>(partEnd) * av_q2d(base);
    for (size_t count = 0; count < mostCompanions; ++count) {
        if (inputEnded || lastPacketEnd > end + companionsBehind || NotedSignal() != 0) return false;
        inputEnded = TakePacket() < 0;
        if (inputEnded) return false;
        if (packet->stream_index != origin->videoIndex) KeepCompanion();
    }
    return true;
}

void FilmReader::GivePicture(VideoFrame& frame, const WritablePlanes& planes) {
    for (size_t plane = 0; plane < planes.size(); ++plane) {
        const int width = plane == 0 ? info.size.width : info.size.ChromaWidth();
        const int height = plane == 0 ? info.size.height : info.size.ChromaHeight();
        av_image_copy_plane(planes[plane].data(), width, picture->data[plane], picture->linesize[plane], width, height);
    }
    frame.hasPicture = true;
    frame.start = pictureStart;
    frame.length = timer->UsualLength();
    frame.parameters.clear();
    pictureIsReady = false;
    ++framesGiven;
}

double FilmReader::SecondsAt(int64_t steps) const {
    return static_cast<double>(steps) * av_q2d(origin->VideoStream().time_base) -
           static_cast<double>(origin->firstTime) / AV_TIME_BASE;
}

void FilmReader::NoteDamage(int64_t steps, const std::string& what) {
    TakeLastLibraryError();
    if (++damagedPlaces > mostDamageNotes) return;
    told.Note((steps != AV_NOPTS_VALUE ? "at " + TimeText(SecondsAt(steps)) + ": " : "") + what);
    if (damagedPlaces == mostDamageNotes) told.Note("further damage is only counted");
}

}  // namespace clarivex
