#include "host/windows/ffmpeg_arguments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <utility>

#include "host/encoder_settings.h"
#include "host/errors.h"
#include "host/film_rules.h"
#include "host/words.h"
#include "platform/paths.h"

namespace clarivex {

namespace {

using std::string;
using std::string_view;

const string firstPictures = ":v:0";  // of the film that is written

void Add(FfmpegArguments& arguments, std::initializer_list<string> more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
}

/// So that no name is taken for an option, a protocol or a device.
string FileUrl(const string& path) { return "file:" + path; }

string SecondsText(int64_t microseconds) { return Fixed(static_cast<double>(microseconds) / 1e6, 6); }

void AddInput(FfmpegArguments& arguments, const string& path, int64_t start) {
    if (start > 0) Add(arguments, {"-ss", SecondsText(start)});
    Add(arguments, {"-i", FileUrl(path)});
}

/// Bits of one level have no range that could be told.
bool IsFullRange(const FirstPicture& picture) {
    return picture.isFullRange || IsRgb(picture) || picture.samples.starts_with("mono");
}

/// A picture of another size, as some films have, would not fit into the stream.
string ConversionFilters(const FirstPicture& picture) {
    if (picture.samples == "yuv420p" && !IsFullRange(picture))
        return "scale=w=" + std::to_string(picture.size.width) + ":h=" + std::to_string(picture.size.height) +
               ":flags=bicubic+accurate_rnd";
    string text = ScaleFilter(picture.size, IsFullRange(picture));
    if (IsRgb(picture))
        text += string(":out_color_matrix=") +
                ScaleMatrixName(WithAssumedColour(picture.colour, picture.codedLines).matrix);
    return text + ",format=yuv420p";
}

/// The first picture becomes the stream's beginning: where it is shown later, half a frame would be taken for a picture that
/// is missing. The film that is written has its pictures as late.
string ReadFilters(const FirstPicture& picture, Deinterlacing deinterlacing) {
    const bool deinterlaces = deinterlacing == Deinterlacing::automatic && !IsRgb(picture);
    return (deinterlaces ? deinterlaceFilter + string(",") : "") + ConversionFilters(picture) + ",setpts=PTS-(" +
           Fixed(picture.seconds, 6) + ")/TB";
}

/// Whether pictures may begin between two moments of their rate. Not where time is counted in frames.
bool TakesAnyTime(const FilmEncoding& encoding) {
    return (encoding.muxer == "matroska" || encoding.muxer == "webm") && encoding.encoder != "libtheora" &&
           !UsualSettingsOf(encoding.encoder).encoder.empty();
}

bool BeginsLater(const FilmTarget& target) { return target.info.origin && target.info.origin->firstSeconds > 0.0; }

/// Has the pictures begin as late as their origin's did, or less than a frame before.
string DelayFilters(const FilmTarget& target, const FilmEncoding& encoding) {
    if (!BeginsLater(target)) return "";
    const double seconds = target.info.origin->firstSeconds;
    if (TakesAnyTime(encoding)) return ",settb=1/90000,setpts=PTS+" + Fixed(seconds, 6) + "/TB";
    constexpr double rounding = 1e-3;
    const Ratio rate = target.info.frameRate;
    const double frames = rate.Known() ? std::floor(seconds * rate.numerator / rate.denominator + rounding) : 0.0;
    return frames > 0.0 ? ",setpts=PTS+" + Fixed(frames, 0) : "";
}

string WriteFilters(const FilmTarget& target, const FilmEncoding& encoding) {
    const VideoColour& colour = target.info.colour;
    const PictureSize size = target.info.size;
    const string filters = "setparams=range=tv:color_primaries=" + std::to_string(colour.primaries) +
                           ":color_trc=" + std::to_string(colour.transfer) +
                           ":colorspace=" + std::to_string(colour.matrix) + DelayFilters(target, encoding);
    const PictureSize even{size.width & ~1, target.fullHeightChroma ? size.height : size.height & ~1};
    if (encoding.encoder == "ffv1" || even == size) return filters;  // others take no half samples of chroma
    return filters + ",crop=" + std::to_string(even.width) + ":" + std::to_string(even.height) + ":0:0";
}

int LocationOf(ChromaSite site) {
    switch (site) {
        case ChromaSite::left: return 1;
        case ChromaSite::center: return 2;
        case ChromaSite::topLeft: return 3;
        default: return 0;
    }
}

using Settings = std::vector<std::pair<string, string>>;

void Set(Settings& settings, const string& name, const string& value) {
    std::erase_if(settings, [&](const auto& one) { return one.first == name; });
    settings.emplace_back(name, value);
}

/// "name=value:name=value", where a colon in a value is written \:.
void SetAll(Settings& settings, string_view words) {
    while (!words.empty()) {
        const size_t equals = std::min(words.find('='), words.size() - 1);
        string value;
        size_t place = equals + 1;
        for (; place < words.size() && words[place] != ':'; ++place) {
            if (words[place] == '\\' && place + 1 < words.size()) ++place;
            value += words[place];
        }
        Set(settings, string(words.substr(0, equals)), value);
        words.remove_prefix(std::min(place + 1, words.size()));
    }
}

/// The usual settings first, so that the person's own win.
void AddEncoder(FfmpegArguments& arguments, const FilmOptions& wanted, const FilmEncoding& encoding) {
    const UsualSettings& usual = UsualSettingsOf(encoding.encoder);
    Settings settings;
    for (const EncoderSetting& setting : usual.settings)
        if (setting.option) Set(settings, setting.option, setting.value);
    if (wanted.quality) {
        char number[32];
        std::snprintf(number, sizeof number, "%g", *wanted.quality);
        Set(settings, encoding.quality, number);
    } else if (usual.quality) {
        Set(settings, encoding.quality, usual.quality);
    }
    SetAll(settings, wanted.encoderOptions);
    if (!encoding.encoder.empty()) Add(arguments, {"-c" + firstPictures, encoding.encoder});
    for (const auto& [name, value] : settings) Add(arguments, {"-" + name + firstPictures, value});
}

/// The texts of the pictures' stream come along, but for those that count what no longer is.
void AddTexts(FfmpegArguments& arguments, const FilmOrigin& origin, const std::vector<FilmStream>& copied) {
    Add(arguments, {"-map_metadata", "1", "-map_chapters", "1"});
    Add(arguments, {"-map_metadata:s:0", "1:s:" + std::to_string(origin.pictures)});
    for (size_t i = 0; i < copied.size(); ++i)
        Add(arguments, {"-map_metadata:s:" + std::to_string(i + 1), "1:s:" + std::to_string(copied[i].index)});
    for (const string stale : {"BPS", "DURATION", "NUMBER_OF_FRAMES", "NUMBER_OF_BYTES", "_STATISTICS_WRITING_APP",
                               "_STATISTICS_WRITING_DATE_UTC", "_STATISTICS_TAGS"})
        Add(arguments, {"-metadata:s:0", stale + "=", "-metadata:s:0", stale + "-eng="});
}

void AddCopies(FfmpegArguments& arguments, const std::vector<FilmStream>& copied) {
    Add(arguments, {"-c:a", "copy", "-c:s", "copy", "-c:t", "copy"});
    for (size_t i = 0; i < copied.size(); ++i)
        if (copied[i].kind == FilmStream::Kind::cover) Add(arguments, {"-c:" + std::to_string(i + 1), "copy"});
}

FfmpegArguments Quietly() { return {"-nostdin", "-hide_banner", "-v", "error"}; }

}  // namespace

string MuxerOf(const string& path) {
    constexpr std::array<std::pair<string_view, const char*>, 18> muxers = {{{".mkv", "matroska"},
                                                                             {".mp4", "mp4"},
                                                                             {".m4v", "mp4"},
                                                                             {".mov", "mov"},
                                                                             {".webm", "webm"},
                                                                             {".avi", "avi"},
                                                                             {".ts", "mpegts"},
                                                                             {".m2ts", "mpegts"},
                                                                             {".mts", "mpegts"},
                                                                             {".mpg", "mpeg"},
                                                                             {".mpeg", "mpeg"},
                                                                             {".flv", "flv"},
                                                                             {".ogv", "ogv"},
                                                                             {".ogg", "ogg"},
                                                                             {".3gp", "3gp"},
                                                                             {".mxf", "mxf"},
                                                                             {".wmv", "asf"},
                                                                             {".nut", "nut"}}};
    string ending = TextOf(PathOf(path).extension());
    std::ranges::transform(ending, ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
    });
    const auto* const found = std::ranges::find(muxers, ending, &std::pair<string_view, const char*>::first);
    if (found == muxers.end())
        throw RunError("its name tells of no kind of film; name a .mkv, .mp4, .mov, .webm or .y4m file");
    return found->second;
}

string UsualEncoderOf(const FilmOptions& options, const string& muxer) {
    if (options.lossless) return "ffv1";
    if (muxer == "webm") return "libvpx-vp9";
    constexpr std::array<string_view, 9> mayHoldH264 = {"matroska", "mp4", "mov", "avi", "mpegts",
                                                        "mpeg",     "flv", "3gp", "nut"};
    return std::ranges::find(mayHoldH264, muxer) == mayHoldH264.end() ? "" : "libx264";
}

FfmpegArguments FactsArguments(const string& path, int64_t start) {
    FfmpegArguments arguments = {"-nostdin", "-hide_banner", "-nostats"};
    AddInput(arguments, path, start);
    Add(arguments, {"-map", "0:V:0", "-frames:v", "1", "-vf", "showinfo", "-f", "null", "-"});
    return arguments;
}

FfmpegArguments ReadArguments(const FilmFacts& facts, const FilmRequest& request) {
    FfmpegArguments arguments = Quietly();
    Add(arguments, {"-nostats", "-progress", "pipe:2"});
    AddInput(arguments, request.path, request.part.start);
    Add(arguments, {"-map", "0:V:0"});
    if (request.part.duration != INT64_MAX) Add(arguments, {"-t", SecondsText(request.part.duration)});
    if (request.part.frames != UINT64_MAX) Add(arguments, {"-frames:v", std::to_string(request.part.frames)});
    if (facts.frameRate.Known())
        Add(arguments,
            {"-r", std::to_string(facts.frameRate.numerator) + "/" + std::to_string(facts.frameRate.denominator)});
    Add(arguments, {"-vf", ReadFilters(*facts.picture, request.deinterlacing), "-f", "yuv4mpegpipe", "-"});
    return arguments;
}

FfmpegArguments TrialArguments(const FilmOrigin& origin, const std::vector<FilmStream>& copied,
                               const FilmEncoding& encoding, const string& part) {
    FfmpegArguments arguments = Quietly();
    Add(arguments, {"-y", "-i", FileUrl(origin.path)});
    for (const FilmStream& stream : copied) Add(arguments, {"-map", "0:" + std::to_string(stream.index)});
    Add(arguments, {"-c", "copy", "-frames:v", "0", "-frames:a", "0", "-frames:s", "0"});
    Add(arguments, {"-f", encoding.muxer, FileUrl(part)});
    return arguments;
}

FfmpegArguments WriteArguments(const FilmTarget& target, const std::vector<FilmStream>& copied,
                               const FilmEncoding& encoding, const string& part) {
    const FilmOrigin* const origin = target.info.origin.get();
    const VideoColour& colour = target.info.colour;
    FfmpegArguments arguments = Quietly();
    Add(arguments, {"-y", "-f", "yuv4mpegpipe", "-i", "-"});
    if (origin) AddInput(arguments, origin->path, origin->start);
    Add(arguments, {"-map", "0:v:0"});
    for (const FilmStream& stream : copied) Add(arguments, {"-map", "1:" + std::to_string(stream.index)});
    if (origin) AddTexts(arguments, *origin, copied);
    AddCopies(arguments, copied);
    Add(arguments, {"-filter" + firstPictures, WriteFilters(target, encoding)});
    AddEncoder(arguments, target.options, encoding);
    if (BeginsLater(target) && TakesAnyTime(encoding)) Add(arguments, {"-enc_time_base" + firstPictures, "1:90000"});
    Add(arguments, {"-color_range" + firstPictures, "tv", "-color_primaries" + firstPictures,
                    std::to_string(colour.primaries), "-color_trc" + firstPictures, std::to_string(colour.transfer),
                    "-colorspace" + firstPictures, std::to_string(colour.matrix),
                    "-chroma_sample_location" + firstPictures, std::to_string(LocationOf(colour.chromaSite))});
    if (origin && origin->start > 0) Add(arguments, {"-copypriorss", "0"});
    if (origin && origin->duration != INT64_MAX) Add(arguments, {"-t", SecondsText(origin->duration)});
    Add(arguments, {"-f", encoding.muxer, FileUrl(part)});
    return arguments;
}

}  // namespace clarivex
