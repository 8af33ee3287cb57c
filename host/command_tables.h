// The commands as a table, and the texts that the help and the manual share.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/command_line.h"
#include "host/option.h"

namespace clarivex {

/// What stood behind a command besides the values of its options.
struct GivenWords {
    std::vector<std::string> files;    ///< words that are no options
    std::vector<std::string> options;  ///< by their full names, in their order

    bool Has(std::string_view option) const;
};

/// A word or a few with their meaning, which is a line without a full stop.
struct Term {
    std::string name;
    std::string meaning;
};

struct CommandTable {
    Command command = Command::help;
    std::string name{};                ///< "enhance"
    std::vector<std::string> uses{};   ///< what follows the name, one way of use each: "[options] IN OUT"
    std::string summary{};             ///< a line without a full stop
    std::vector<std::string> about{};  ///< paragraphs
    WordKind words = WordKind::none;   ///< of the words that are no options
    std::vector<OptionGroup> groups{};
    std::vector<Term> keys{};  ///< that it knows while it runs
    std::function<void(const GivenWords&)>
        finish;  ///< takes the files and checks what excludes what; throws UsageError
};

/// All commands, bound to `line`: their options and files set it. It outlives the tables and holds the defaults now.
std::vector<CommandTable> MakeCommandTables(CommandLine& line);

/// The options that work with every command and without one, --help and --version; they set nothing.
std::span<const Option> GeneralOptions();

/// The command of that name. Throws UsageError, which names the nearest one if there is a near one.
const CommandTable& FindCommand(std::span<const CommandTable> commands, std::string_view name);

/// A titled text of the manual and the help.
struct TextSection {
    std::string_view title;
    std::vector<std::string_view> paragraphs;
};

/// What holds for all commands: files and pipes, exit codes.
std::vector<TextSection> CommonSections();

/// A command line with what it does.
struct Example {
    std::string_view purpose;
    std::string_view command;
};

std::vector<Example> Examples();

}  // namespace clarivex
