// Y4M: a line of tags for the stream, then for each frame a line beginning with FRAME and the planes Y, U, V.
#include "host/y4m.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "host/errors.h"

namespace clarivex {

namespace {

constexpr std::string_view frameMagic = "FRAME";
constexpr std::string_view subsamplingTag = "XYSCSS=";  // an older way to name the chroma format
constexpr std::string_view rangeTag = "XCOLORRANGE=";
constexpr std::string_view lengthTag = "XLENGTH=";
constexpr const char* conversion = "ffmpeg -i CLIP -pix_fmt yuv420p -f yuv4mpegpipe makes a stream that works";
constexpr const char* deinterlacing =
    "ffmpeg -i CLIP -vf bwdif -pix_fmt yuv420p -f yuv4mpegpipe - makes whole frames of it";

struct ChromaFormat {
    std::string_view name;
    ChromaSite site;
};

constexpr ChromaFormat chromaFormats[] = {{"420", ChromaSite::center},
                                          {"420jpeg", ChromaSite::center},
                                          {"420mpeg2", ChromaSite::left},
                                          {"420paldv", ChromaSite::topLeft}};

std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

struct Line {
    std::string text;       // without its end
    bool complete = false;  // the line end was there
};

/// Reads up to the next line end, at most longestY4mLine bytes.
Line ReadLine(ByteSource& source) {
    Line line;
    uint8_t letter = 0;
    while (line.text.size() < longestY4mLine && source.Read({&letter, 1}) == 1) {
        if (letter == '\n') return {std::move(line.text), true};
        line.text += static_cast<char>(letter);
    }
    return line;
}

std::vector<std::string> Words(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const size_t end = std::min(text.find(' '), text.size());
        if (end > 0) words.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

std::optional<uint32_t> ParseNumber(std::string_view text) {
    uint32_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

int32_t ParseSide(const std::string& tag, const char* what) {
    const auto side = ParseNumber(std::string_view(tag).substr(1));
    if (!side || *side < 1 || *side > static_cast<uint32_t>(largestPictureSide))
        throw RunError("header tag " + Printable(tag) + ": the " + what + " must be 1 to " +
                       std::to_string(largestPictureSide));
    return static_cast<int32_t>(*side);
}

Ratio ParseRatio(const std::string& tag, const char* what) {
    const std::string_view value = std::string_view(tag).substr(1);
    const size_t colon = std::min(value.find(':'), value.size());
    const auto numerator = ParseNumber(value.substr(0, colon));
    const auto denominator = ParseNumber(value.substr(std::min(colon + 1, value.size())));
    if (!numerator || !denominator)
        throw RunError("header tag " + Printable(tag) + ": the " + what + " must be two whole numbers, such as " +
                       tag[0] + "4:3");
    return {*numerator, *denominator};
}

void CheckFrameRate(const std::string& tag, Ratio rate) {
    constexpr uint64_t longestFrameSeconds = 3600;
    constexpr uint64_t mostFramesASecond = 1'000'000;
    if (rate.Known() && (rate.denominator > rate.numerator * longestFrameSeconds ||
                         rate.numerator > rate.denominator * mostFramesASecond))
        throw RunError("header tag " + Printable(tag) +
                       ": the frame rate must be from one an hour to a million a second");
}

ChromaSite ParseChroma(std::string_view format, const std::string& tag) {
    for (const ChromaFormat& known : chromaFormats)
        if (format == known.name) return known.site;
    throw RunError("chroma format " + Printable(tag) + " is not supported: 8-bit 4:2:0 is needed; " + conversion);
}

/// The name that leaves nothing open.
std::string_view NameOf(ChromaSite site) {
    switch (site) {
        case ChromaSite::left: return "420mpeg2";
        case ChromaSite::topLeft: return "420paldv";
        default: return "420jpeg";
    }
}

/// Letters that nobody knows count as progressive.
Interlacing ParseInterlacing(std::string_view letters) {
    if (letters == "t") return Interlacing::topFieldFirst;
    if (letters == "b") return Interlacing::bottomFieldFirst;
    return letters == "m" ? Interlacing::mixed : Interlacing::progressive;
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return lower;
}

bool HasTag(const Y4mHeader& header, char kind) {
    return std::any_of(header.tags.begin(), header.tags.end(), [=](const std::string& tag) { return tag[0] == kind; });
}

void ReadTag(const std::string& tag, Y4mHeader& header) {
    switch (tag[0]) {
        case 'W': header.size.width = ParseSide(tag, "width"); break;
        case 'H': header.size.height = ParseSide(tag, "height"); break;
        case 'C': header.chromaSite = ParseChroma(std::string_view(tag).substr(1), tag); break;
        case 'I': header.interlacing = ParseInterlacing(std::string_view(tag).substr(1)); break;
        case 'A': header.sampleAspect = ParseRatio(tag, "sample aspect"); break;
        case 'F':
            header.frameRate = ParseRatio(tag, "frame rate");
            CheckFrameRate(tag, header.frameRate);
            break;
        case 'X':
            if (tag.starts_with(rangeTag))
                header.range = tag.substr(rangeTag.size()) == "FULL" ? ColourRange::full : ColourRange::video;
            break;
        default: break;  // whatever comes later passes through
    }
}

void CheckSize(const Y4mHeader& header) {
    if (header.size.width == 0 || header.size.height == 0)
        throw RunError(std::string("the Y4M header has no ") + (header.size.width == 0 ? "width (W)" : "height (H)") +
                       "; " + conversion);
}

/// The older tag counts where the other is missing.
void ReadOlderChroma(Y4mHeader& header) {
    if (HasTag(header, 'C')) return;
    for (const std::string& tag : header.tags)
        if (tag.starts_with(subsamplingTag))
            header.chromaSite = ParseChroma(LowerCase(std::string_view(tag).substr(subsamplingTag.size())), tag);
}

/// A tag of the input as it stands in the output; "" where it does not.
std::string ChangedTag(const std::string& tag, const Y4mChanges& changes) {
    if (tag[0] == 'W') return "W" + std::to_string(changes.size.width);
    if (tag[0] == 'H') return "H" + std::to_string(changes.size.height);
    if (changes.fullHeightChroma && tag[0] == 'C') return "C422";
    if (changes.fullHeightChroma && tag.starts_with(subsamplingTag)) return std::string(subsamplingTag) + "422";
    if (changes.toVideoRange && tag.starts_with(rangeTag)) return std::string(rangeTag) + "LIMITED";
    return changes.otherLength && tag.starts_with(lengthTag) ? "" : tag;
}

bool BeginsWithWord(std::string_view line, std::string_view word) {
    return line.starts_with(word) && (line.size() == word.size() || line[word.size()] == ' ');
}

/// Whether a line that the stream's end broke off may have been the beginning of a frame.
bool EndsInsideFrameLine(std::string_view line) {
    return line.size() < longestY4mLine && (frameMagic.starts_with(line) || BeginsWithWord(line, frameMagic));
}

std::string CutShort(uint64_t frame, size_t expected, size_t found) {
    return "frame " + std::to_string(frame) + " is cut short: " + std::to_string(expected) + " bytes expected, " +
           std::to_string(found) + " found";
}

}  // namespace

Y4mHeader ParseY4mHeader(std::string_view line) {
    if (!BeginsWithWord(line, y4mMagic)) throw RunError(std::string("is not a Y4M stream; ") + conversion);
    Y4mHeader header;
    header.tags = Words(line.substr(y4mMagic.size()));
    for (const std::string& tag : header.tags) ReadTag(tag, header);
    CheckSize(header);
    ReadOlderChroma(header);
    return header;
}

std::string InterlacingWarning(const Y4mHeader& header) {
    const auto warning = [](const char* tag, const char* meaning) {
        return std::string("the Y4M header says ") + tag + ": frames of two fields, " + meaning +
               ", enhanced as if each were one picture; " + deinterlacing;
    };
    switch (header.interlacing) {
        case Interlacing::topFieldFirst: return warning("It", "the upper one first");
        case Interlacing::bottomFieldFirst: return warning("Ib", "the lower one first");
        case Interlacing::mixed: return warning("Im", "some of them");
        default: return "";
    }
}

std::string Y4mHeaderLine(const Y4mHeader& input, const Y4mChanges& changes) {
    std::string line(y4mMagic);
    for (const std::string& tag : input.tags)
        if (const std::string changed = ChangedTag(tag, changes); !changed.empty()) line += " " + changed;
    if (changes.fullHeightChroma && !HasTag(input, 'C')) line += " C422";
    return line + "\n";
}

std::string Y4mHeaderLine(const Y4mFormat& format) {
    const auto ratio = [](const Ratio& r) { return std::to_string(r.numerator) + ":" + std::to_string(r.denominator); };
    std::string line(y4mMagic);
    line += " W" + std::to_string(format.size.width) + " H" + std::to_string(format.size.height);
    if (format.frameRate.Known()) line += " F" + ratio(format.frameRate);
    line += " Ip";
    if (format.sampleAspect.Known()) line += " A" + ratio(format.sampleAspect);
    line += " C" + std::string(format.fullHeightChroma ? "422" : NameOf(format.chromaSite));
    return line + " " + std::string(rangeTag) + "LIMITED\n";
}

Y4mReader::Y4mReader(ByteSource& stream) : source(stream) {
    const Line line = ReadLine(source);
    if (!line.complete && line.text.empty())
        throw RunError(std::string("is empty, a Y4M stream is needed; ") +
                       (source.MayBePiped() ? "the program before it in the pipe may have failed; " : "") + conversion);
    if (!line.complete && line.text.starts_with(y4mMagic))
        throw RunError("the Y4M header has no line end within " + std::to_string(longestY4mLine) + " bytes; " +
                       conversion);
    header = ParseY4mHeader(line.text);
    headerBytes = line.text.size() + 1;
}

bool Y4mReader::ReadFrame(Y4mFrame& frame) {
    frame.samples.resize(header.size.PlanarBytes());
    return ReadFrame(frame.parameters, PlanesIn<uint8_t>(header.size, frame.samples));
}

bool Y4mReader::ReadFrame(std::string& parameters, const WritablePlanes& planes) {
    const Line line = ReadLine(source);
    if (!line.complete && line.text.empty()) return false;
    const size_t expected = header.size.PlanarBytes();
    if (!line.complete && EndsInsideFrameLine(line.text)) throw RunError(CutShort(framesRead, expected, 0));
    if (!line.complete || !BeginsWithWord(line.text, frameMagic))
        throw RunError("frame " + std::to_string(framesRead) +
                       " does not begin with a line that says FRAME: the stream "
                       "is damaged or its header states another size");
    parameters = line.text.substr(frameMagic.size());
    size_t found = 0;
    for (const auto& plane : planes) found += source.Read(plane);
    if (found < expected) throw RunError(CutShort(framesRead, expected, found));
    ++framesRead;
    return true;
}

uint64_t Y4mReader::FramesIn(uint64_t streamBytes) const {
    const uint64_t frameBytes = frameMagic.size() + 1 + header.size.PlanarBytes();
    return streamBytes < headerBytes ? 0 : (streamBytes - headerBytes) / frameBytes;
}

Y4mWriter::Y4mWriter(ByteSink& stream, std::string_view headerLine) : sink(stream) { sink.Write(BytesOf(headerLine)); }

void Y4mWriter::WriteFrame(std::string_view parameters, const PicturePlanes& planes) {
    sink.Write(BytesOf(std::string(frameMagic) + std::string(parameters) + "\n"));
    for (const auto& plane : planes) sink.Write(plane);
    sink.Flush();  // a viewer at the other end of a pipe gets each frame whole and at once
}

}  // namespace clarivex
