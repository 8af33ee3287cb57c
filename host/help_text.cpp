// The tables of commands and options laid out for a terminal.
#include "host/help_text.h"

#include <utility>
#include <vector>

#include "host/command_tables.h"

namespace clarivex {

namespace {

constexpr size_t lineLetters = 80;
constexpr size_t summaryColumn = 12;
constexpr size_t meaningColumn = 26;
constexpr size_t keyColumn = 16;

/// The text broken between words into lines of at most so many letters; a longer word has a line of its own.
std::vector<std::string> BrokenInto(size_t letters, std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const size_t space = text.find(' ');
        const std::string_view word = text.substr(0, space);
        if (lines.empty() || lines.back().size() + 1 + word.size() > letters)
            lines.emplace_back(word);
        else
            lines.back().append(" ").append(word);
        text.remove_prefix(space == std::string_view::npos ? text.size() : space + 1);
    }
    return lines;
}

/// `label`, then `text` from `column` on; a label that reaches the column has its own line.
std::string Entry(std::string label, std::string_view text, size_t column) {
    std::string laidOut;
    const auto endLine = [&] { laidOut += std::exchange(label, "") + "\n"; };
    if (text.empty() || (!label.empty() && label.size() + 2 > column)) endLine();
    for (const std::string& line : BrokenInto(lineLetters - column, text)) {
        label.resize(column, ' ');
        label += line;
        endLine();
    }
    return laidOut;
}

std::string Paragraph(std::string_view text) { return Entry("", text, 0); }

std::string OptionEntry(const Option& option) {
    std::string label = "  ";
    if (!option.alias.empty()) label += option.alias + ", ";
    label += option.name;
    if (option.TakesValue()) label += " " + option.value;
    return Entry(label, MeaningOf(option), meaningColumn);
}

std::string Overview() {
    CommandLine defaults;
    std::string text = Paragraph("clarivex: " + std::string(programSummary)) + "\nclarivex COMMAND [options] [files]\n";
    for (const CommandTable& command : MakeCommandTables(defaults))
        text += Entry("  " + command.name, command.summary, summaryColumn);
    text += "\nclarivex help COMMAND lists the options of a command. Without one:\n";
    for (const Option& option : GeneralOptions()) text += OptionEntry(option);
    for (const auto& [title, paragraphs] : CommonSections()) {
        text += "\n" + std::string(title) + ":\n";
        for (const std::string_view paragraph : paragraphs) text += Entry("", paragraph, 2);
    }
    text += "\nExamples:\n";
    for (const auto& [purpose, command] : Examples()) text += "  " + std::string(command) + "\n";
    return text;
}

std::string CommandHelp(const CommandTable& command) {
    std::string text = Paragraph("clarivex " + command.name + ": " + command.summary) + "\n";
    for (const std::string& use : command.uses)
        text += Paragraph("clarivex " + command.name + (use.empty() ? "" : " " + use));
    for (const std::string& paragraph : command.about) text += "\n" + Paragraph(paragraph);
    for (const auto& [title, options] : command.groups) {
        text += "\n" + (title.empty() ? "Options" : title) + ":\n";
        for (const Option& option : options) text += OptionEntry(option);
    }
    if (!command.keys.empty()) text += "\nKeys:\n";
    for (const auto& [name, meaning] : command.keys) text += Entry("  " + name, meaning, keyColumn);
    return text;
}

}  // namespace

const std::string_view programSummary = "sharpens, corrects and enlarges video by 3/2, as the plug-in does in a player";

std::string MeaningOf(const Option& option) {
    std::string text = option.help;
    if (!option.range.empty()) text += "; " + option.range;
    if (!option.standard.empty()) text += "; default " + option.standard;
    return text;
}

std::string HelpText(const HelpTopic& topic) {
    if (topic.command.empty()) return Overview();
    CommandLine defaults;
    return CommandHelp(FindCommand(MakeCommandTables(defaults), topic.command));
}

}  // namespace clarivex
