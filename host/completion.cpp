// The script asks two questions in turn: what value the option before the word takes, else what words its command takes.
#include "host/completion.h"

#include <string_view>
#include <vector>

#include "host/command_tables.h"

namespace clarivex {

namespace {

// Bash makes "=" a word of its own.
constexpr std::string_view opening = R"(# Completes the command line of clarivex in bash.
_clarivex_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen "$@")
}

_clarivex_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_clarivex() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    if [[ $word == = ]]; then
        word=
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
)";

constexpr std::string_view closing = R"(}

complete -F _clarivex clarivex
)";

/// The words as one word of the shell.
std::string Quoted(const std::vector<std::string>& words) {
    std::string quoted;
    for (const std::string& word : words) quoted += (quoted.empty() ? "'" : " ") + word;
    return quoted.empty() ? "''" : quoted + "'";
}

/// The order that completes a word of that kind.
std::string OrderFor(WordKind kind, const std::vector<std::string>& words) {
    switch (kind) {
        case WordKind::file: return "_clarivex_files -f -- \"$word\"";
        case WordKind::folder: return "_clarivex_files -d -- \"$word\"";
        case WordKind::choice:
        case WordKind::command: return "_clarivex_words " + Quoted(words) + " \"$word\"";
        case WordKind::text:
        case WordKind::none: break;
    }
    return ":";
}

/// The branches of a command's options that take a value.
std::string ValueBranches(const CommandTable& command) {
    std::string script;
    for (const OptionGroup& group : command.groups)
        for (const Option& option : group.options)
            if (option.TakesValue())
                script += "    '" + command.name + " " + option.name + "') " + OrderFor(option.kind, option.choices) +
                          "; return ;;\n";
    return script;
}

std::vector<std::string> OptionWords(std::span<const OptionGroup> groups) {
    std::vector<std::string> words;
    for (const OptionGroup& group : groups)
        for (const Option& option : group.options) words.push_back(option.name);
    for (const Option& option : GeneralOptions()) words.push_back(option.name);
    return words;
}

std::string CommandBranch(const CommandTable& command, const std::vector<std::string>& commandNames) {
    return "    '" + command.name + " -'*) _clarivex_words " + Quoted(OptionWords(command.groups)) + " \"$word\" ;;\n" +
           "    '" + command.name + " '*) " + OrderFor(command.words, commandNames) + " ;;\n";
}

}  // namespace

std::string BashCompletion() {
    CommandLine defaults;
    const auto commands = MakeCommandTables(defaults);
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (const CommandTable& command : commands) names.push_back(command.name);
    std::vector<std::string> first = names;
    for (const Option& option : GeneralOptions()) first.push_back(option.name);

    std::string script(opening);
    script +=
        "    if ((COMP_CWORD == 1)); then\n        _clarivex_words " + Quoted(first) + " \"$word\"\n        return\n";
    script += "    fi\n    case \"${COMP_WORDS[1]} $before\" in\n";
    for (const CommandTable& command : commands) script += ValueBranches(command);
    script += "    esac\n    case \"${COMP_WORDS[1]} $word\" in\n";
    for (const CommandTable& command : commands) script += CommandBranch(command, names);
    return script.append("    esac\n").append(closing);
}

}  // namespace clarivex
