// The walk over the words: which are options, which are their values, and which are files.
#include "host/command_line.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "host/command_tables.h"
#include "host/errors.h"
#include "host/suggestion.h"

namespace clarivex {

namespace {

/// The words that have not been taken, from the first on.
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

bool IsOption(std::string_view word) { return word.size() > 1 && word[0] == '-'; }

/// Names are never empty.
bool IsCalled(const Option& option, std::string_view name) { return option.name == name || option.alias == name; }

const Option& FindOption(std::span<const OptionGroup> groups, std::string_view name) {
    std::vector<std::string> names;
    for (const OptionGroup& group : groups)
        for (const Option& option : group.options) {
            if (IsCalled(option, name)) return option;
            names.push_back(option.name);
        }
    throw UsageError("unknown option " + Printable(name) + Suggestion(name, names));
}

/// Applies the option that `word` names, with its value from behind a "=" or from the next word, and gives its full name.
std::string ReadOption(std::string_view word, WordReader& rest, std::span<const OptionGroup> groups) {
    const size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    const bool joined = equals != std::string_view::npos;
    const Option& option = FindOption(groups, name);
    if (!option.TakesValue() && joined) throw UsageError(std::string(name) + " takes no value");
    if (option.TakesValue() && !joined && rest.Empty())
        throw UsageError(std::string(name) + " needs a value behind it");
    if (!option.TakesValue())
        option.apply({});
    else
        option.apply(joined ? word.substr(equals + 1) : rest.Next());
    return option.name;
}

/// Applies the options among the words behind a command.
GivenWords ReadWords(WordReader& rest, std::span<const OptionGroup> groups) {
    GivenWords given;
    bool optionsEnded = false;
    while (!rest.Empty()) {
        const std::string_view word = rest.Next();
        if (!optionsEnded && word == "--")
            optionsEnded = true;
        else if (!optionsEnded && IsOption(word))
            given.options.push_back(ReadOption(word, rest, groups));
        else
            given.files.emplace_back(word);
    }
    return given;
}

/// --help or --version, wherever it stands before "--"; nothing where there is neither.
const Option* FindGeneralOption(std::span<const char* const> words) {
    for (const std::string_view word : words) {
        if (word == "--") break;
        for (const Option& option : GeneralOptions())
            if (IsCalled(option, word)) return &option;
    }
    return nullptr;
}

/// Help for the command among the words; for all where none is.
HelpTopic TopicOf(std::span<const char* const> words, std::span<const CommandTable> commands) {
    const auto command = std::ranges::find_if_not(words, IsOption);
    if (command == words.end() || std::ranges::count(commands, *command, &CommandTable::name) == 0) return {};
    return {*command};
}

[[noreturn]] void ThrowNoCommand(std::span<const CommandTable> commands) {
    std::string names = commands.front().name;
    for (const CommandTable& command : commands.subspan(1))
        names += (&command == &commands.back() ? " or " : ", ") + command.name;
    throw UsageError("a command is missing: " + names);
}

}  // namespace

CommandLine ParseCommandLine(std::span<const char* const> words) {
    CommandLine result;
    const std::vector<CommandTable> commands = MakeCommandTables(result);
    if (const Option* general = FindGeneralOption(words)) {
        result.command = general->name == "--version" ? Command::version : Command::help;
        result.help = TopicOf(words, commands);
        return result;
    }
    WordReader rest(words);
    if (rest.Empty()) ThrowNoCommand(commands);
    const std::string_view name = rest.Next();
    if (IsOption(name)) throw UsageError("unknown option " + Printable(name));
    const CommandTable& command = FindCommand(commands, name);
    result.command = command.command;
    command.finish(ReadWords(rest, command.groups));
    if (!result.help.command.empty()) FindCommand(commands, result.help.command);
    return result;
}

}  // namespace clarivex
