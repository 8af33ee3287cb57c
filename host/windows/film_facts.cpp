#include "host/windows/film_facts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "host/errors.h"

namespace clarivex {

namespace {

using std::string_view;

// Names by code point of H.273; "" stands for one that has none.
constexpr std::array<string_view, 23> primariesNames = {
    "",     "bt709",  "unknown",  "",         "bt470m",   "bt470bg", "smpte170m", "smpte240m",
    "film", "bt2020", "smpte428", "smpte431", "smpte432", "",        "",          "",
    "",     "",       "",         "",         "",         "",        "ebu3213"};
constexpr std::array<string_view, 19> transferNames = {
    "",          "bt709",     "unknown",   "",         "bt470m",       "bt470bg", "smpte170m",
    "smpte240m", "linear",    "log100",    "log316",   "iec61966-2-4", "bt1361e", "iec61966-2-1",
    "bt2020-10", "bt2020-12", "smpte2084", "smpte428", "arib-std-b67"};
constexpr std::array<string_view, 15> matrixNames = {
    "",          "bt709", "unknown",  "",        "fcc",       "bt470bg",           "smpte170m",
    "smpte240m", "ycgco", "bt2020nc", "bt2020c", "smpte2085", "chroma-derived-nc", "chroma-derived-c",
    "ictcp"};

int32_t CodeOf(string_view name, std::span<const string_view> names) {
    const auto found = name.empty() ? names.end() : std::ranges::find(names, name);
    return found == names.end() ? VideoColour::untold : static_cast<int32_t>(found - names.begin());
}

string_view Trimmed(string_view line) {
    const size_t start = std::min(line.find_first_not_of(' '), line.size());
    return line.substr(start);
}

/// The word behind " key" in a line; empty where there is none.
string_view ValueOf(string_view line, const std::string& key) {
    const size_t place = line.find(" " + key);
    if (place == string_view::npos) return {};
    const string_view value = Trimmed(line.substr(place + 1 + key.size()));
    return value.substr(0, value.find_first_of(" \r"));
}

FilmStream::Kind KindOf(string_view word, string_view line) {
    using enum FilmStream::Kind;
    if (word == "Video") return line.find("(attached pic)") != string_view::npos ? cover : pictures;
    return word == "Audio" ? sound : word == "Subtitle" ? subtitle : word == "Attachment" ? attachment : other;
}

/// "Stream #0:1[0x2](eng): Audio: aac (LC), 44100 Hz …".
std::optional<FilmStream> ReadStream(string_view line) {
    FilmStream stream;
    const size_t colon = line.find(':') + 1;  // there is one
    if (std::from_chars(line.data() + colon, line.data() + line.size(), stream.index).ec != std::errc()) return {};
    const size_t word = line.find(": ", colon);
    const size_t wordEnd = word == string_view::npos ? word : line.find(": ", word + 2);
    if (wordEnd == string_view::npos) return {};
    stream.kind = KindOf(line.substr(word + 2, wordEnd - word - 2), line);
    const string_view codec = line.substr(wordEnd + 2);
    stream.codec = codec.substr(0, codec.find_first_of(" ,\r"));
    return stream;
}

/// "01:02:03.45" in seconds.
std::optional<double> ReadDuration(string_view text) {
    const std::string time(text);
    int hours = 0;
    int minutes = 0;
    double seconds = 0.0;
    if (std::sscanf(time.c_str(), "%d:%d:%lf", &hours, &minutes, &seconds) != 3) return {};
    return 3600.0 * hours + 60.0 * minutes + seconds;
}

/// "30000/1001".
Ratio ReadRate(string_view text) {
    const std::string rate(text);
    Ratio read;
    return std::sscanf(rate.c_str(), "%u/%u", &read.numerator, &read.denominator) == 2 ? read : Ratio{};
}

std::optional<FirstPicture> ReadPicture(string_view line) {
    FirstPicture picture;
    const std::string size(ValueOf(line, "s:"));
    if (std::sscanf(size.c_str(), "%dx%d", &picture.size.width, &picture.size.height) != 2) return {};
    picture.seconds = std::atof(std::string(ValueOf(line, "pts_time:")).c_str());
    picture.samples = ValueOf(line, "fmt:");
    const string_view fields = ValueOf(line, "i:");
    picture.isInterlaced = fields == "T" || fields == "B";
    picture.isFullRange = picture.samples.starts_with("yuvj");
    picture.codedLines = picture.size.height;
    return picture;
}

void ReadColour(string_view line, FirstPicture& picture) {
    if (ValueOf(line, "color_range:") == "pc") picture.isFullRange = true;
    picture.colour.primaries = CodeOf(ValueOf(line, "color_primaries:"), primariesNames);
    picture.colour.transfer = CodeOf(ValueOf(line, "color_trc:"), transferNames);
    picture.colour.matrix = CodeOf(ValueOf(line, "color_space:"), matrixNames);
}

/// Takes the lines in the order in which they come.
class FactsReader {
public:
    void Take(string_view line) {
        if (colourIsRead) return;
        if (line.find("Parsed_showinfo") != string_view::npos) return TakePictureLine(line);
        const string_view words = Trimmed(line);
        if (words.starts_with("Stream mapping:") || words.starts_with("Output #")) inputIsOver = true;
        if (!inputIsOver) TakeInputLine(words);
    }

    FilmFacts Facts() {
        if (facts.picture && isOnItsSide) facts.picture->codedLines = facts.picture->size.width;
        return facts;
    }

private:
    void TakeInputLine(string_view words) {
        constexpr string_view rotation = "displaymatrix: rotation of ";
        constexpr string_view duration = "Duration: ";
        if (words.starts_with("Stream #0:")) {
            if (const auto stream = ReadStream(words)) facts.streams.push_back(*stream);
        } else if (words.starts_with(duration)) {
            facts.seconds = ReadDuration(words.substr(duration.size()));
        } else if (words.starts_with(rotation)) {
            const long quarters = std::lround(std::atof(std::string(words.substr(rotation.size())).c_str()) / 90.0);
            facts.isTurned = facts.isTurned || quarters != 0;
            isOnItsSide = quarters % 2 != 0;
        }
    }

    void TakePictureLine(string_view line) {
        if (line.find(" config in ") != string_view::npos) {
            facts.frameRate = ReadRate(ValueOf(line, "frame_rate:"));
        } else if (!facts.picture) {
            facts.picture = ReadPicture(line);
        } else if (line.find(" color_primaries:") != string_view::npos) {
            ReadColour(line, *facts.picture);
            colourIsRead = true;
        }
    }

    FilmFacts facts;
    bool inputIsOver = false;
    bool colourIsRead = false;
    bool isOnItsSide = false;
};

}  // namespace

std::string NameOf(const FilmStream& stream) {
    constexpr std::array<const char*, 6> kinds = {"video", "cover", "audio", "subtitle", "attachment", "data"};
    return std::string(kinds[static_cast<size_t>(stream.kind)]) + " stream " + std::to_string(stream.index) + " (" +
           PrintablePath(stream.codec) + ")";
}

FilmFacts ReadFilmFacts(string_view words) {
    FactsReader reader;
    while (!words.empty()) {
        const size_t end = std::min(words.find('\n'), words.size());
        reader.Take(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return reader.Facts();
}

bool IsRgb(const FirstPicture& picture) {
    constexpr std::array<string_view, 4> parts = {"rgb", "bgr", "gbr", "pal8"};
    return std::ranges::any_of(parts,
                               [&](string_view part) { return picture.samples.find(part) != string_view::npos; });
}

const FilmStream* PicturesOf(const FilmFacts& facts) {
    const auto found = std::ranges::find(facts.streams, FilmStream::Kind::pictures, &FilmStream::kind);
    return found == facts.streams.end() ? nullptr : &*found;
}

}  // namespace clarivex
