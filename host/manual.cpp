// The tables laid out in the language of man: a line that begins with a dot is an order, all else is text.
#include "host/manual.h"

#include <algorithm>
#include <string_view>

#include "host/command_tables.h"
#include "host/help_text.h"
#include "runtime/version.h"

namespace clarivex {

namespace {

/// Text as it is to be read: no letter of it is an order, and its dashes can be copied into a shell.
std::string Plain(std::string_view text) {
    std::string source = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char letter : text)
        if (letter == '\\')
            source += "\\e";
        else if (letter == '-')
            source += "\\-";
        else
            source += letter;
    return source;
}

std::string Bold(std::string_view text) { return "\\fB" + Plain(text) + "\\fR"; }

std::string Italic(std::string_view text) { return "\\fI" + Plain(text) + "\\fR"; }

std::string Section(std::string_view title) {
    std::string upper(title);
    std::ranges::transform(upper, upper.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    return ".SH " + Plain(upper) + "\n";
}

std::string Paragraph(std::string_view text) { return ".PP\n" + Plain(text) + "\n"; }

/// Choices are typed as they stand, other values are put in.
std::string ValueOf(const Option& option) {
    std::string source;
    for (const std::string& choice : option.choices) source += (source.empty() ? "" : "|") + Bold(choice);
    return source.empty() ? Italic(option.value) : source;
}

std::string OptionEntry(const Option& option) {
    std::string source = ".TP\n";
    if (!option.alias.empty()) source += Bold(option.alias) + ", ";
    source += Bold(option.name);
    if (option.TakesValue()) source += " " + ValueOf(option);
    return source + "\n" + Plain(MeaningOf(option)) + ".\n";
}

std::string Synopsis(const CommandTable& command) {
    std::string source;
    for (const std::string& use : command.uses)
        source += ".br\n" + Bold("clarivex " + command.name) + (use.empty() ? "" : " " + Plain(use)) + "\n";
    return source;
}

std::string CommandEntry(const CommandTable& command) {
    std::string source = ".SS " + command.name + "\n" + Plain(command.summary) + ".\n";
    for (const std::string& paragraph : command.about) source += Paragraph(paragraph);
    for (const auto& [title, options] : command.groups) {
        if (!title.empty()) source += Paragraph(title + ":");
        for (const Option& option : options) source += OptionEntry(option);
    }
    if (!command.keys.empty()) source += Paragraph("Keys:");
    for (const auto& [name, meaning] : command.keys) source += ".TP\n" + Bold(name) + "\n" + Plain(meaning) + ".\n";
    return source;
}

}  // namespace

std::string ManualPage() {
    CommandLine defaults;
    const auto commands = MakeCommandTables(defaults);
    std::string source = ".TH CLARIVEX 1 \"\" \"Clarivex " + std::string(versionText) + "\" \"User Commands\"\n";
    source += Section("Name") + "clarivex \\- " + Plain(programSummary) + "\n" + Section("Synopsis");
    for (const CommandTable& command : commands) source += Synopsis(command);
    source += Section("Options") + "With every command, and without one:\n";
    for (const Option& option : GeneralOptions()) source += OptionEntry(option);
    source += Section("Commands");
    for (const CommandTable& command : commands) source += CommandEntry(command);
    for (const auto& [title, paragraphs] : CommonSections()) {
        source += Section(title);
        for (const std::string_view paragraph : paragraphs) source += Paragraph(paragraph);
    }
    source += Section("Examples");
    for (const auto& [purpose, command] : Examples())
        source += Paragraph(std::string(purpose) + ":") + ".PP\n.EX\n" + Plain(command) + "\n.EE\n";
    return source;
}

}  // namespace clarivex
