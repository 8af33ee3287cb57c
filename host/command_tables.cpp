// What each command is called, says of itself, and demands of its files.
#include "host/command_tables.h"

#include <algorithm>
#include <array>

#include "host/errors.h"
#include "host/option_tables.h"
#include "host/suggestion.h"
#include "play/keys.h"

namespace clarivex {

namespace {

void CheckFileCount(const GivenWords& given, size_t wanted, const std::string& needed, const std::string& remedy = "") {
    if (given.files.size() != wanted)
        throw UsageError(needed + ", " + std::to_string(given.files.size()) + " given" + remedy);
}

void CheckPlugin(PictureOptions& picture, const GivenWords& given) {
    if (picture.plugin.empty()) return;
    if (picture.simd != "auto")
        throw UsageError("--simd and --plugin exclude each other: a loaded plug-in chooses for itself");
    if (picture.caption)
        throw UsageError("--caption and --plugin exclude each other: a loaded plug-in always shows it");
    if (given.Has("--limits") && picture.limits == SizeLimits::off)
        throw UsageError("--limits off and --plugin exclude each other: a loaded plug-in keeps its limits");
    picture.limits = SizeLimits::plugin;
}

void CheckEncoding(const FilmOptions& film) {
    if (!film.lossless) return;
    if (!film.encoder.empty())
        throw UsageError("--lossless and --encoder exclude each other: lossless films are written by FFV1");
    if (film.quality) throw UsageError("--lossless and --quality exclude each other: lossless films keep every sample");
}

void TakeInputs(EnhanceOptions& options, const GivenWords& given) {
    if (given.files.empty()) throw UsageError("enhance --into needs at least one file to enhance, 0 given");
    if (std::ranges::count(given.files, "-") > 0)
        throw UsageError("- has no name to be given to a file: --into takes files only");
    options.inputs = given.files;
}

void FinishEnhance(EnhanceOptions& options, const GivenWords& given) {
    if (options.folder.empty()) {
        CheckFileCount(given, 2, "enhance needs two files, IN and OUT (- for a pipe)",
                       given.files.size() > 2 ? "; --into FOLDER takes many inputs" : "");
        if (given.Has("--suffix")) throw UsageError("--suffix needs --into: it names the files that are made there");
        options.inputs = {given.files[0]};
        options.output = given.files[1];
    } else {
        TakeInputs(options, given);
    }
    CheckPlugin(options.picture, given);
    CheckEncoding(options.film);
}

void FinishCompare(CompareOptions& options, const GivenWords& given) {
    CheckFileCount(given, 2, "compare needs two files, IN and OUT.png");
    std::string ending = given.files[1].substr(given.files[1].size() - std::min<size_t>(4, given.files[1].size()));
    std::ranges::transform(ending, ending.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
    });
    if (ending != ".png")
        throw UsageError(Printable(given.files[1]) + ": compare writes a PNG file, whose name ends in .png");
    options.input = given.files[0];
    options.output = given.files[1];
}

CommandTable EnhanceTable(EnhanceOptions& options) {
    return {
        .command = Command::enhance,
        .name = "enhance",
        .uses = {"[options] IN OUT", "[options] --into FOLDER IN..."},
        .summary = "enhance a video",
        .about =
            {"Plays IN through the plug-in and writes what comes out: sharpened, its lighting corrected, and enlarged "
             "by "
             "exactly 3/2.",
             "Films come and go with their sound, subtitles, chapters and tags; OUT's ending chooses the container. It "
             "appears under its name when it is whole."},
        .words = WordKind::file,
        .groups = OptionsOf(options),
        .finish = [&options](const GivenWords& given) { FinishEnhance(options, given); }};
}

void FinishPlay(PlaySettings& settings, const GivenWords& given) {
    CheckFileCount(given, 1, "play needs one film, FILE or URI");
    if (given.files[0] == "-") throw UsageError("play takes no pipe: it needs a FILE or URI, in which it can jump");
    settings.film = given.files[0];
}

std::vector<Term> PlayerKeys() {
    std::vector<Term> keys;
    for (const KeyRow& row : KeyTable()) keys.push_back({NamesOf(row), std::string(row.meaning)});
    return keys;
}

CommandTable PlayTable(PlaySettings& settings) {
    return {.command = Command::play,
            .name = "play",
            .uses = {"[options] FILE|URI"},
            .summary = "watch a film enhanced, live in a window",
            .about = {"Plays a film, sound and all, through GStreamer in a window of X11 or, through its X server, of "
                      "Wayland. Keys work in the window and in the terminal."},
            .words = WordKind::file,
            .groups = OptionsOf(settings),
            .keys = PlayerKeys(),
            .finish = [&settings](const GivenWords& given) { FinishPlay(settings, given); }};
}

CommandTable CompareTable(CompareOptions& options) {
    return {.command = Command::compare,
            .name = "compare",
            .uses = {"[options] IN OUT.png"},
            .summary = "a frame plainly enlarged and enhanced, as one picture",
            .about =
                {"Shows what enhancing does to a frame of IN: plainly enlarged on the left, enhanced on the right. The "
                 "second before the frame is played first, so that the lighting has settled."},
            .words = WordKind::file,
            .groups = OptionsOf(options),
            .finish = [&options](const GivenWords& given) { FinishCompare(options, given); }};
}

CommandTable CaptionTable(CaptionOptions& options) {
    return {.command = Command::caption,
            .name = "caption",
            .uses = {"[options] OUT"},
            .summary = "the opening caption alone, over grey: a Y4M video of one frame",
            .about = {"Draws the caption that the plug-in shows over the start of a stream."},
            .words = WordKind::file,
            .groups = OptionsOf(options),
            .finish = [&options](const GivenWords& given) {
                CheckFileCount(given, 1, "caption needs one file, OUT (- for a pipe)");
                options.output = given.files[0];
            }};
}

CommandTable TuneTable(TuneOptions& options) {
    return {
        .command = Command::tune,
        .name = "tune",
        .uses = {"[options] TARGET"},
        .summary = "look for engine settings that restore a reduced bitmap best; for development",
        .about = {"Reduces the bitmap TARGET, tries random settings of the engine on it, and prints the error of each "
                  "attempt that improves, then the settings.",
                  "It leaves in.bmp (the picture reduced) and out.bmp (enlarged again with the best settings) in the "
                  "current folder, in place of any that are there."},
        .words = WordKind::file,
        .groups = OptionsOf(options),
        .finish = [&options](const GivenWords& given) {
            CheckFileCount(given, 1, "tune needs one file, TARGET (- for a pipe)");
            options.target = given.files[0];
        }};
}

CommandTable InfoTable() {
    return {.command = Command::info,
            .name = "info",
            .uses = {""},
            .summary = "version, processor, instruction set and speed",
            .finish = [](const GivenWords& given) {
                if (given.files.empty()) return;
                throw UsageError("info takes no arguments, but " + Printable(given.files[0]) + " follows");
            }};
}

CommandTable HelpTable(HelpTopic& topic) {
    return {.command = Command::help,
            .name = "help",
            .uses = {"[COMMAND]"},
            .summary = "what a command does, and its options",
            .words = WordKind::command,
            .finish = [&topic](const GivenWords& given) {
                if (given.files.size() > 1)
                    throw UsageError("help takes one command, but " + Printable(given.files[1]) + " follows");
                if (!given.files.empty()) topic.command = given.files[0];
            }};
}

}  // namespace

bool GivenWords::Has(std::string_view option) const { return std::ranges::count(options, option) > 0; }

std::vector<CommandTable> MakeCommandTables(CommandLine& line) {
    return {EnhanceTable(line.enhance), PlayTable(line.play), CompareTable(line.compare), CaptionTable(line.caption),
            TuneTable(line.tune),       InfoTable(),          HelpTable(line.help)};
}

std::span<const Option> GeneralOptions() {
    static const std::array<Option, 2> options = {
        {{.name = "--help", .alias = "-h", .help = "show what the command does and its options"},
         {.name = "--version", .alias = "-V", .help = "show the version"}}};
    return options;
}

const CommandTable& FindCommand(std::span<const CommandTable> commands, std::string_view name) {
    const auto found = std::ranges::find(commands, name, &CommandTable::name);
    if (found != commands.end()) return *found;
    std::vector<std::string> names;
    for (const CommandTable& command : commands) names.push_back(command.name);
    throw UsageError("unknown command " + Printable(name) + Suggestion(name, names));
}

std::vector<TextSection> CommonSections() {
    return {
        {"Files",
         {"IN, OUT and TARGET are files; - is standard input or output, where Y4M is written. Options may stand before "
          "or behind the files; -- ends the options, so that a file's name may begin with -.",
          "Y4M video (8-bit 4:2:0), from and to files named .y4m and pipes, passes exactly: no sample changes but by "
          "the enhancement. Films of all other kinds are read and written by FFmpeg: on Linux through its libraries, "
          "on "
          "Windows by an ffmpeg.exe in PATH or beside clarivex.exe; without one the Windows program takes Y4M only."}},
        {"Exit status",
         {"0: all was done.", "1: the run failed; frames already written stay whole.", "2: wrong use.",
          "130 and 143: ended by an interrupt or by SIGTERM; what was finished of a film is kept under its name "
          "with .part behind it."}}};
}

std::vector<Example> Examples() {
    return {{"Enhance a film", "clarivex enhance film.mp4 film-enhanced.mkv"},
            {"Half a minute of it, written without loss",
             "clarivex enhance --start 1:30 --duration 30 --lossless film.mp4 part.mkv"},
            {"Many films", "clarivex enhance --into enhanced *.mp4"},
            {"See what it does to a frame", "clarivex compare --at 1:30 film.mp4 frame.png"},
            {"Watch it, plain and enhanced side by side", "clarivex play --split 0.5 film.mp4"},
            {"In a pipe", "ffmpeg -i IN -pix_fmt yuv420p -f yuv4mpegpipe - | clarivex enhance - - | ffmpeg -i - OUT"}};
}

}  // namespace clarivex
