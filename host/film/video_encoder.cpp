#include "host/film/video_encoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "host/encoder_settings.h"
#include "host/errors.h"
#include "host/film/library_log.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace clarivex {

namespace {

AVPixelFormat SamplesOf(const FilmTarget& target) {
    return target.fullHeightChroma ? AV_PIX_FMT_YUV422P : AV_PIX_FMT_YUV420P;
}

bool Takes(const AVCodec& encoder, AVPixelFormat samples) {
    for (const AVPixelFormat* one = encoder.pix_fmts; one && *one != AV_PIX_FMT_NONE; ++one)
        if (*one == samples) return true;
    return !encoder.pix_fmts;
}

/// Whether a container that says nothing of codecs begins with one: tried on one that nobody sees.
bool BeginsWith(const AVOutputFormat& container, AVCodecID codec) {
    AVFormatContext* trial = nullptr;
    if (avformat_alloc_output_context2(&trial, &container, nullptr, nullptr) < 0) throw std::bad_alloc();
    AVStream* const pictures = avformat_new_stream(trial, nullptr);
    bool begins = false;
    if (pictures && avio_open_dyn_buf(&trial->pb) >= 0) {
        pictures->time_base = {1, 25};
        pictures->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
        pictures->codecpar->codec_id = codec;
        pictures->codecpar->width = pictures->codecpar->height = 64;
        begins = avformat_write_header(trial, nullptr) >= 0;
        uint8_t* written = nullptr;
        avio_close_dyn_buf(trial->pb, &written);
        av_free(written);
    }
    avformat_free_context(trial);
    TakeLastLibraryError();
    return begins;
}

/// Whether a container may hold a codec.
bool MayHold(const AVOutputFormat& container, AVCodecID codec) {
    const int told = avformat_query_codec(&container, codec, FF_COMPLIANCE_NORMAL);
    if (told >= 0) return told > 0;
    const bool isBareStream = container.audio_codec == AV_CODEC_ID_NONE;
    return codec == container.video_codec || (!isBareStream && BeginsWith(container, codec));
}

/// Names of all encoders here whose pictures the container may hold.
std::string EncodersThere(const AVOutputFormat& container, AVPixelFormat samples) {
    std::string names;
    void* place = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&place)) {
        const bool fits = av_codec_is_encoder(codec) && codec->type == AVMEDIA_TYPE_VIDEO && codec->pix_fmts &&
                          (codec->capabilities & AV_CODEC_CAP_EXPERIMENTAL) == 0 && Takes(*codec, samples) &&
                          MayHold(container, codec->id);
        if (fits) names += (names.empty() ? "" : ", ") + std::string(codec->name);
    }
    return names.empty() ? "none" : names;
}

std::string UsualEncoder(const FilmTarget& target, const AVOutputFormat& container) {
    if (target.options.lossless) return "ffv1";
    if (std::string_view(container.name) == "webm") return "libvpx-vp9";
    if (MayHold(container, AV_CODEC_ID_H264) && avcodec_find_encoder_by_name("libx264")) return "libx264";
    const AVCodec* const usual = avcodec_find_encoder(container.video_codec);
    if (!usual || usual->type != AVMEDIA_TYPE_VIDEO)
        throw RunError(std::string("a ") + container.name +
                       " file holds no video; name a .mkv, .mp4, .mov or .webm file");
    return usual->name;
}

const AVCodec& FindEncoder(const FilmTarget& target, const AVOutputFormat& container) {
    const std::string name = target.options.encoder.empty() ? UsualEncoder(target, container) : target.options.encoder;
    const AVPixelFormat samples = SamplesOf(target);
    const auto there = [&] { return "; there are " + EncodersThere(container, samples); };
    const AVCodec* const encoder = avcodec_find_encoder_by_name(name.c_str());
    if (!encoder || encoder->type != AVMEDIA_TYPE_VIDEO)
        throw RunError("FFmpeg's libraries here have no video encoder " + Printable(name) + there());
    if (!Takes(*encoder, samples))
        throw RunError("the encoder " + name + " takes no pictures of " + av_get_pix_fmt_name(samples) + there());
    if (!MayHold(container, encoder->id))
        throw RunError(std::string("a ") + container.name + " file cannot hold what the encoder " + name + " makes" +
                       there() + "; a .mkv file holds all of them");
    return *encoder;
}

AVRational RationalOf(Ratio ratio) {
    AVRational reduced{0, 1};
    if (ratio.Known()) av_reduce(&reduced.num, &reduced.den, ratio.numerator, ratio.denominator, INT32_MAX);
    return reduced;
}

/// These count time in frames.
bool NeedsFrameClock(AVCodecID codec) {
    return codec == AV_CODEC_ID_MPEG4 || codec == AV_CODEC_ID_MPEG1VIDEO || codec == AV_CODEC_ID_MPEG2VIDEO ||
           codec == AV_CODEC_ID_THEORA || codec == AV_CODEC_ID_H263 || codec == AV_CODEC_ID_MSMPEG4V3;
}

/// These show frames at an even rate, whatever their times. The libraries' own flag for it leaves out MP4, which has times.
bool NeedsFrameClock(const AVOutputFormat& container) {
    constexpr std::array<std::string_view, 4> even = {"avi", "mxf", "gxf", "dv"};
    return std::find(even.begin(), even.end(), container.name) != even.end();
}

AVChromaLocation LocationOf(ChromaSite site) {
    switch (site) {
        case ChromaSite::left: return AVCHROMA_LOC_LEFT;
        case ChromaSite::center: return AVCHROMA_LOC_CENTER;
        case ChromaSite::topLeft: return AVCHROMA_LOC_TOPLEFT;
        default: return AVCHROMA_LOC_UNSPECIFIED;
    }
}

/// What an encoder takes of an odd side: FFV1 all of it, others what has chroma of its own.
PictureSize EncodedSize(const FilmTarget& target, AVCodecID codec) {
    const PictureSize size = target.info.size;
    if (codec == AV_CODEC_ID_FFV1) return size;
    return {size.width & ~1, target.fullHeightChroma ? size.height : size.height & ~1};
}

void DescribePictures(const FilmTarget& target, const AVOutputFormat& container, AVCodecContext& encoder) {
    const VideoInfo& info = target.info;
    const PictureSize size = EncodedSize(target, encoder.codec_id);
    encoder.width = size.width;
    encoder.height = size.height;
    encoder.pix_fmt = SamplesOf(target);
    encoder.sample_aspect_ratio = RationalOf(info.sampleAspect);
    encoder.color_primaries = static_cast<AVColorPrimaries>(info.colour.primaries);
    encoder.color_trc = static_cast<AVColorTransferCharacteristic>(info.colour.transfer);
    encoder.colorspace = static_cast<AVColorSpace>(info.colour.matrix);
    encoder.color_range = AVCOL_RANGE_MPEG;
    encoder.chroma_sample_location = LocationOf(info.colour.chromaSite);
    encoder.framerate = RationalOf(info.frameRate);
    if (encoder.framerate.num == 0) encoder.framerate = {25, 1};
    encoder.time_base = RationalOf(info.timeBase);
    if (encoder.time_base.num == 0 || NeedsFrameClock(container) || NeedsFrameClock(encoder.codec_id))
        encoder.time_base = av_inv_q(encoder.framerate);
}

void SetQuality(const std::string& quality, AVCodecContext& encoder, Dictionary& options) {
    for (const char* scale : {"crf", "qp"})
        if (av_opt_find(encoder.priv_data, scale, nullptr, 0, 0)) return options.Set(scale, quality);
    encoder.flags |= AV_CODEC_FLAG_QSCALE;
    encoder.global_quality = static_cast<int>(std::lround(std::stod(quality) * FF_QP2LAMBDA));
}

std::string NumberText(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

/// The usual settings first, so that the person's own win.
void SetOptions(const FilmOptions& wanted, AVCodecContext& encoder, Dictionary& options) {
    const UsualSettings usual = UsualSettingsOf(encoder.codec->name);
    for (const EncoderSetting& setting : usual.settings)
        if (setting.option) options.Set(setting.option, setting.value);
    if (wanted.quality)
        SetQuality(NumberText(*wanted.quality), encoder, options);
    else if (usual.quality)
        SetQuality(usual.quality, encoder, options);
    CheckAv(av_dict_parse_string(&options.entries, wanted.encoderOptions.c_str(), "=", ":", 0),
            "--encoder-options " + Printable(wanted.encoderOptions));
}

}  // namespace

std::string EncoderText(const AVCodecContext& encoder) {
    const AVCodecDescriptor* const codec = avcodec_descriptor_get(encoder.codec_id);
    std::string name = codec ? codec->name : "video";
    for (char& letter : name) letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    return name + " by " + encoder.codec->name;
}

AvPointer<AVCodecContext> OpenVideoEncoder(const FilmTarget& target, const AVOutputFormat& container) {
    const AVCodec& codec = FindEncoder(target, container);
    const std::string name = std::string("the encoder ") + codec.name;
    AvPointer<AVCodecContext> encoder(avcodec_alloc_context3(&codec));
    if (!encoder) throw std::bad_alloc();
    DescribePictures(target, container, *encoder);
    encoder->thread_count = 0;  // as many as there are processor cores
    if ((container.flags & AVFMT_GLOBALHEADER) != 0) encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    Dictionary options;
    SetOptions(target.options, *encoder, options);
    CheckAv(avcodec_open2(encoder.get(), &codec, &options.entries), name + " refuses the pictures or its options");
    if (const std::string unknown = options.FirstName(); !unknown.empty())
        throw RunError(name + " knows no option " + Printable(unknown) + "; ffmpeg -h encoder=" + codec.name +
                       " lists its options");
    return encoder;
}

}  // namespace clarivex
