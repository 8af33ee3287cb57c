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
    options.format = Choose<SampleFormat>(
        "--format", value, {{"yv12", SampleFormat::yv12}, {"iyuv", SampleFormat::iyuv}, {"yuy2", SampleFormat::yuy2}});
}

void SetMode(EnhanceOptions& options, Value value) {
    options.mode = Choose<EnlargeMode>(
        "--mode", value,
        {{"never", EnlargeMode::never}, {"auto", EnlargeMode::automatic}, {"always", EnlargeMode::always}});
}

void SetSharpness(EnhanceOptions& options, Value value) {
    const auto sharpness = ParseWhole<float>(value);
    if (!sharpness || !(*sharpness >= 0.0f && *sharpness <= 2.0f))
        ThrowBadValue("--sharpness", value, "a number from 0 to 2");
    options.sharpness = *sharpness;
}

void SetHd(EnhanceOptions& options, Value value) {
    options.allowHd = Choose<bool>("--hd", value, {{"allow", true}, {"bypass", false}});
}

void SetSimd(EnhanceOptions& options, Value value) {
    options.simd = Choose<std::string>(
        "--simd", value,
        {{"scalar", "scalar"}, {"sse2", "sse2"}, {"avx2", "avx2"}, {"avx512", "avx512"}, {"auto", "auto"}});
}

void SetFrames(EnhanceOptions& options, Value value) {
    const auto frames = ParseWhole<uint64_t>(value);
    if (!frames || *frames == 0) ThrowBadValue("--frames", value, "a whole number from 1");
    options.frames = *frames;
}

void SetPlugin(EnhanceOptions& options, Value value) {
    if (value.empty()) ThrowBadValue("--plugin", value, "the path of a plug-in library");
    options.plugin = value;
}

struct Option {
    std::string_view name;
    bool takesValue;
    void (*apply)(EnhanceOptions& options, Value value);
};

constexpr std::array<Option, 11> enhanceOptions = {{
    {"--format", true, SetFormat},
    {"--mode", true, SetMode},
    {"--sharpness", true, SetSharpness},
    {"--lighting", true, [](EnhanceOptions& o, Value value) { o.lighting = ChooseSwitch("--lighting", value); }},
    {"--hd", true, SetHd},
    {"--simd", true, SetSimd},
    {"--frames", true, SetFrames},
    {"--caption", true, [](EnhanceOptions& o, Value value) { o.caption = ChooseSwitch("--caption", value); }},
    {"--plugin", true, SetPlugin},
    {"--quiet", false, [](EnhanceOptions& o, Value) { o.quiet = true; }},
    {"--timing", false, [](EnhanceOptions& o, Value) { o.timing = true; }},
}};

const Option& FindOption(std::string_view name) {
    const auto found = std::find_if(enhanceOptions.begin(), enhanceOptions.end(),
                                    [=](const Option& option) { return option.name == name; });
    if (found == enhanceOptions.end()) throw UsageError("unknown option " + Printable(name));
    return *found;
}

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

void ReadOption(std::string_view word, WordReader& rest, EnhanceOptions& options) {
    const size_t equals = word.find('=');
    const bool joined = equals != std::string_view::npos;
    const Option& option = FindOption(word.substr(0, equals));
    if (!option.takesValue && joined) throw UsageError(std::string(option.name) + " takes no value");
    if (option.takesValue && !joined && rest.Empty())
        throw UsageError(std::string(option.name) + " needs a value behind it");
    if (!option.takesValue)
        option.apply(options, {});
    else
        option.apply(options, joined ? word.substr(equals + 1) : rest.Next());
}

bool IsOption(std::string_view word) { return word.size() > 1 && word[0] == '-'; }

void CheckTogether(const EnhanceOptions& options) {
    if (!options.plugin.empty() && options.simd != "auto")
        throw UsageError("--simd and --plugin exclude each other: a loaded plug-in chooses for itself");
}

EnhanceOptions ParseEnhance(WordReader rest) {
    EnhanceOptions options;
    std::vector<std::string_view> files;
    bool optionsEnded = false;
    while (!rest.Empty()) {
        const std::string_view word = rest.Next();
        if (!optionsEnded && word == "--")
            optionsEnded = true;
        else if (!optionsEnded && IsOption(word))
            ReadOption(word, rest, options);
        else
            files.push_back(word);
    }
    if (files.size() != 2)
        throw UsageError("enhance needs two files, IN and OUT (- for a pipe), " + std::to_string(files.size()) +
                         " given");
    CheckTogether(options);
    options.input = files[0];
    options.output = files[1];
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
    if (const auto general = FindGeneralOption(words)) return {*general, {}};
    WordReader rest(words);
    if (rest.Empty()) throw UsageError("a command is missing: enhance or info");
    const std::string_view command = rest.Next();
    if (command == "enhance") return {Command::enhance, ParseEnhance(rest)};
    if (command != "info")
        throw UsageError((IsOption(command) ? "unknown option " : "unknown command ") + Printable(command));
    if (!rest.Empty()) throw UsageError("info takes no arguments, but " + Printable(rest.Next()) + " follows");
    return {Command::info, {}};
}

const char* const helpText =
    R"(clarivex: sharpens, corrects and enlarges video by 3/2, as the plug-in does in a player

  clarivex enhance [options] IN OUT    enhance a Y4M video (8-bit 4:2:0); - is standard input or output
  clarivex info                        version, processor, instruction set and speed
  clarivex --help | --version

Options of enhance:
  --format yv12|iyuv|yuy2    samples handed to the plug-in; yuy2 writes 4:2:2; default yv12
  --mode never|auto|always   when to enlarge; auto: if the processor is fast enough; default always
  --sharpness 0..2           crispness of edges; default 1
  --lighting on|off          automatic lighting control; default on
  --hd allow|bypass          bypass: pictures of 589824 samples (1024x576) or more pass unchanged; default allow
  --simd scalar|sse2|avx2|avx512|auto
                             instruction set of the kernels; default auto
  --frames N                 stop after N frames
  --caption on|off           the plug-in's opening caption; default off
  --plugin PATH              Windows: go through this library instead of the code linked in
  --timing                   print the time spent inside ProcessOutput
  --quiet                    no notes, no progress, no summary

Exit codes: 0 done, 1 the run failed, 2 wrong use.

In a pipe:
  ffmpeg -i IN -pix_fmt yuv420p -f yuv4mpegpipe - | clarivex enhance - - | ffmpeg -i - OUT
)";

}  // namespace clarivex
