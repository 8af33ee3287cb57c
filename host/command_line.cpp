// Options as a table: a name, whether a value follows, and what the option does to the structure.
#include "host/command_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "host/errors.h"

namespace clarivex {

namespace {

using Value = std::string_view;

template <class Meaning>
using Choices = std::initializer_list<std::pair<std::string_view, Meaning>>;

[[noreturn]] void ThrowBadValue(std::string_view option, Value value, const std::string& allowed) {
    throw UsageError(std::string(option) + " " + Printable(value) + ": the value must be " + allowed);
}

template <class Meaning>
Meaning Choose(std::string_view option, Value value, Choices<Meaning> choices) {
    std::string allowed;
    for (const auto& [word, meaning] : choices) {
        if (word == value) return meaning;
        allowed += (allowed.empty() ? "" : ", ") + std::string(word);
    }
    ThrowBadValue(option, value, "one of " + allowed);
}

bool ChooseSwitch(std::string_view option, Value value) {
    return Choose<bool>(option, value, {{"on", true}, {"off", false}});
}

template <class Number>
std::optional<Number> ParseWhole(Value value) {
    Number number{};
    const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    return error == std::errc() && stop == value.data() + value.size() ? std::optional(number) : std::nullopt;
}

void SetFormat(EnhanceOptions& options, Value value) {
    options.picture.format = Choose<SampleFormat>(
        "--format", value, {{"yv12", SampleFormat::yv12}, {"iyuv", SampleFormat::iyuv}, {"yuy2", SampleFormat::yuy2}});
}

void SetMode(EnhanceOptions& options, Value value) {
    options.picture.mode = Choose<EnlargeMode>(
        "--mode", value,
        {{"never", EnlargeMode::never}, {"auto", EnlargeMode::automatic}, {"always", EnlargeMode::always}});
}

void SetSharpness(EnhanceOptions& options, Value value) {
    const auto sharpness = ParseWhole<float>(value);
    if (!sharpness || !(*sharpness >= 0.0f && *sharpness <= 2.0f))
        ThrowBadValue("--sharpness", value, "a number from 0 to 2");
    options.picture.sharpness = *sharpness;
}

void SetHd(EnhanceOptions& options, Value value) {
    options.picture.allowHd = Choose<bool>("--hd", value, {{"allow", true}, {"bypass", false}});
}

void SetSimd(EnhanceOptions& options, Value value) {
    options.picture.simd = Choose<std::string>(
        "--simd", value,
        {{"scalar", "scalar"}, {"sse2", "sse2"}, {"avx2", "avx2"}, {"avx512", "avx512"}, {"auto", "auto"}});
}

void SetFrames(EnhanceOptions& options, Value value) {
    const auto frames = ParseWhole<uint64_t>(value);
    if (!frames || *frames == 0) ThrowBadValue("--frames", value, "a whole number from 1");
    options.part.frames = *frames;
}

void SetFrame(CaptionOptions& options, Value value) {
    const auto frame = ParseWhole<int32_t>(value);
    if (!frame || *frame < 1 || *frame > largestCaptionFrame)
        ThrowBadValue("--frame", value, "a whole number from 1 to " + std::to_string(largestCaptionFrame));
    options.frame = *frame;
}

/// Two whole numbers around a sign.
template <class Number>
std::optional<std::pair<Number, Number>> ParsePair(Value value, char sign) {
    const size_t at = value.find(sign);
    if (at == Value::npos) return std::nullopt;
    const auto first = ParseWhole<Number>(value.substr(0, at));
    const auto second = ParseWhole<Number>(value.substr(at + 1));
    return first && second ? std::optional(std::pair(*first, *second)) : std::nullopt;
}

void SetSize(CaptionOptions& options, Value value) {
    const auto isSide = [](int32_t side) { return side >= 1 && side <= largestPictureSide; };
    const auto size = ParsePair<int32_t>(value, 'x');
    if (!size || !isSide(size->first) || !isSide(size->second))
        ThrowBadValue("--size", value, "WIDTHxHEIGHT, each from 1 to " + std::to_string(largestPictureSide));
    options.size = {size->first, size->second};
}

void SetAspect(CaptionOptions& options, Value value) {
    const auto aspect = ParsePair<uint32_t>(value, ':');
    const auto isWithin = [](uint64_t larger, uint64_t smaller) { return smaller > 0 && larger <= 64 * smaller; };
    if (!aspect || !isWithin(aspect->first, aspect->second) || !isWithin(aspect->second, aspect->first))
        ThrowBadValue("--aspect", value, "two whole numbers such as 16:11, between 1:64 and 64:1");
    options.sampleAspect = {aspect->first, aspect->second};
}

void SetAttempts(TuneOptions& options, Value value) {
    const auto attempts = ParseWhole<int32_t>(value);
    if (!attempts || *attempts < 1 || *attempts > mostTuningAttempts)
        ThrowBadValue("--attempts", value, "a whole number from 1 to " + std::to_string(mostTuningAttempts));
    options.tuning.attempts = *attempts;
}

void SetSeed(TuneOptions& options, Value value) {
    const auto seed = ParseWhole<uint32_t>(value);
    if (!seed) ThrowBadValue("--seed", value, "a whole number from 0 to " + std::to_string(UINT32_MAX));
    options.tuning.seed = *seed;
}

void SetScale(TuneOptions& options, Value value) {
    options.tuning.scale = Choose<TuningScale>(
        "--scale", value,
        {{"1", TuningScale::unscaled}, {"3/2", TuningScale::threeHalves}, {"2", TuningScale::twofold}});
}

void SetPlugin(EnhanceOptions& options, Value value) {
    if (value.empty()) ThrowBadValue("--plugin", value, "the path of a plug-in library");
    options.picture.plugin = value;
}

template <class Options>
struct Option {
    std::string_view name;
    bool takesValue;
    void (*apply)(Options& options, Value value);
};

constexpr std::array<Option<EnhanceOptions>, 11> enhanceOptions = {{
    {"--format", true, SetFormat},
    {"--mode", true, SetMode},
    {"--sharpness", true, SetSharpness},
    {"--lighting", true,
     [](EnhanceOptions& o, Value value) { o.picture.lighting = ChooseSwitch("--lighting", value); }},
    {"--hd", true, SetHd},
    {"--simd", true, SetSimd},
    {"--frames", true, SetFrames},
    {"--caption", true, [](EnhanceOptions& o, Value value) { o.picture.caption = ChooseSwitch("--caption", value); }},
    {"--plugin", true, SetPlugin},
    {"--quiet", false, [](EnhanceOptions& o, Value) { o.quiet = true; }},
    {"--timing", false, [](EnhanceOptions& o, Value) { o.timing = true; }},
}};

constexpr std::array<Option<CaptionOptions>, 3> captionOptions = {{
    {"--frame", true, SetFrame},
    {"--size", true, SetSize},
    {"--aspect", true, SetAspect},
}};

constexpr std::array<Option<TuneOptions>, 4> tuneOptions = {{
    {"--attempts", true, SetAttempts},
    {"--seed", true, SetSeed},
    {"--scale", true, SetScale},
    {"--quiet", false, [](TuneOptions& o, Value) { o.quiet = true; }},
}};

/// The words behind the command, one taken at a time.
class WordReader {
public:
    explicit WordReader(std::span<const char* const> given) : words(given) {}

    bool Empty() const { return words.empty(); }

    std::string_view Next() {
        const std::string_view word = words.front();
        words = words.subspan(1);
        return word;
    }

private:
    std::span<const char* const> words;
};

template <class Options>
void ReadOption(std::string_view word, WordReader& rest, std::span<const Option<Options>> known, Options& options) {
    const size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    const bool joined = equals != std::string_view::npos;
    const auto option = std::find_if(known.begin(), known.end(), [=](const auto& one) { return one.name == name; });
    if (option == known.end()) throw UsageError("unknown option " + Printable(name));
    if (!option->takesValue && joined) throw UsageError(std::string(name) + " takes no value");
    if (option->takesValue && !joined && rest.Empty()) throw UsageError(std::string(name) + " needs a value behind it");
    if (!option->takesValue)
        option->apply(options, {});
    else
        option->apply(options, joined ? word.substr(equals + 1) : rest.Next());
}

bool IsOption(std::string_view word) { return word.size() > 1 && word[0] == '-'; }

/// Sets `options` from the options among the words behind a command, and gives the other words: files.
template <class Options>
std::vector<std::string_view> ReadWords(WordReader& rest, std::span<const Option<Options>> known, Options& options) {
    std::vector<std::string_view> files;
    bool optionsEnded = false;
    while (!rest.Empty()) {
        const std::string_view word = rest.Next();
        if (!optionsEnded && word == "--")
            optionsEnded = true;
        else if (!optionsEnded && IsOption(word))
            ReadOption(word, rest, known, options);
        else
            files.push_back(word);
    }
    return files;
}

void CheckFileCount(const std::vector<std::string_view>& files, size_t wanted, const std::string& needed) {
    if (files.size() != wanted) throw UsageError(needed + ", " + std::to_string(files.size()) + " given");
}

void CheckTogether(const EnhanceOptions& options) {
    if (options.picture.plugin.empty()) return;
    if (options.picture.simd != "auto")
        throw UsageError("--simd and --plugin exclude each other: a loaded plug-in chooses for itself");
    if (options.picture.caption)
        throw UsageError("--caption and --plugin exclude each other: a loaded plug-in always shows it");
}

EnhanceOptions ParseEnhance(WordReader& rest) {
    EnhanceOptions options;
    const auto files = ReadWords<EnhanceOptions>(rest, enhanceOptions, options);
    CheckFileCount(files, 2, "enhance needs two files, IN and OUT (- for a pipe)");
    CheckTogether(options);
    options.inputs = {std::string(files[0])};
    options.output = files[1];
    return options;
}

CompareOptions ParseCompare(WordReader& rest) {
    CompareOptions options;
    const auto files = ReadWords<CompareOptions>(rest, {}, options);
    CheckFileCount(files, 2, "compare needs two files, IN and OUT.png");
    options.input = files[0];
    options.output = files[1];
    return options;
}

CaptionOptions ParseCaption(WordReader& rest) {
    CaptionOptions options;
    const auto files = ReadWords<CaptionOptions>(rest, captionOptions, options);
    CheckFileCount(files, 1, "caption needs one file, OUT (- for a pipe)");
    options.output = files[0];
    return options;
}

TuneOptions ParseTune(WordReader& rest) {
    TuneOptions options;
    const auto files = ReadWords<TuneOptions>(rest, tuneOptions, options);
    CheckFileCount(files, 1, "tune needs one file, TARGET (- for a pipe)");
    options.target = files[0];
    return options;
}

/// --help and --version wherever they stand before "--".
std::optional<Command> FindGeneralOption(std::span<const char* const> words) {
    for (const std::string_view word : words) {
        if (word == "--") break;
        if (word == "--help" || word == "-h") return Command::help;
        if (word == "--version") return Command::version;
    }
    return std::nullopt;
}

}  // namespace

CommandLine ParseCommandLine(std::span<const char* const> words) {
    CommandLine result;
    if (const auto general = FindGeneralOption(words)) {
        result.command = *general;
        return result;
    }
    WordReader rest(words);
    if (rest.Empty()) throw UsageError("a command is missing: enhance, caption, tune or info");
    const std::string_view command = rest.Next();
    if (command == "enhance") {
        result.command = Command::enhance;
        result.enhance = ParseEnhance(rest);
    } else if (command == "compare") {
        result.command = Command::compare;
        result.compare = ParseCompare(rest);
    } else if (command == "caption") {
        result.command = Command::caption;
        result.caption = ParseCaption(rest);
    } else if (command == "tune") {
        result.command = Command::tune;
        result.tune = ParseTune(rest);
    } else if (command == "info") {
        result.command = Command::info;
        if (!rest.Empty()) throw UsageError("info takes no arguments, but " + Printable(rest.Next()) + " follows");
    } else {
        throw UsageError((IsOption(command) ? "unknown option " : "unknown command ") + Printable(command));
    }
    return result;
}

}  // namespace clarivex
