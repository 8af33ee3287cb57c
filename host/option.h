// An option of a command, told once: for the parser, the help, the manual and the completion.
#pragma once

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/option_values.h"

namespace clarivex {

/// What a shell may complete a word with.
enum class WordKind { none, choice, text, file, folder, command };

struct Option {
    std::string name{};                  ///< "--mode"
    std::string alias{};                 ///< "-y"; empty where there is none
    WordKind kind = WordKind::none;      ///< of the value; none: there is no value
    std::string value{};                 ///< how texts call the value: "N", "never|auto|always"
    std::vector<std::string> choices{};  ///< the only values there are, where it is a choice
    std::string range{};                 ///< "0 to 2"; empty where the help says all
    std::string standard{};              ///< the value that holds without the option; empty where the help says it
    std::string help{};                  ///< what it does, in words that can stand in a sentence of the manual
    std::function<void(std::string_view)> apply{};  ///< takes a value over; throws UsageError for one that is none

    bool TakesValue() const { return kind != WordKind::none; }
};

/// Options that belong together in the help.
struct OptionGroup {
    std::string title;
    std::vector<Option> options;
};

/// Throws the UsageError "OPTION VALUE: the value must be ALLOWED".
[[noreturn]] void ThrowBadValue(std::string_view option, std::string_view value, const std::string& allowed);

/// The shortest decimal form: "1", "0.5".
std::string NumberText(double number);

// The makers of options. What they set outlives the option. The field's value at the time of making is the default.

/// An option without a value that sets `field`.
Option Flag(std::string name, std::string alias, bool& field, std::string help);

/// What is common to options with a value: `parse` turns the word into an optional; without one it is refused, as it is
/// not `allowed`.
template <class Field, class Parse>
Option ValueOption(std::string name, std::string value, Field& field, std::string help, std::string allowed,
                   Parse parse) {
    Option option{.name = name, .kind = WordKind::text, .value = std::move(value), .help = std::move(help)};
    option.apply = [name = std::move(name), allowed = std::move(allowed), parse, &field](std::string_view word) {
        const auto meaning = parse(word);
        if (!meaning) ThrowBadValue(name, word, allowed);
        field = *meaning;
    };
    return option;
}

/// A text that `isGood` takes as it is.
template <class Check>
Option TextOption(std::string name, std::string value, std::string& field, std::string help, std::string allowed,
                  Check isGood) {
    return ValueOption(std::move(name), std::move(value), field, std::move(help), std::move(allowed),
                       [=](std::string_view word) { return isGood(word) ? std::optional(word) : std::nullopt; });
}

/// A number from `low` to `high`; the largest number of 64 bits stands for no upper limit.
template <class Number, class Field>
Option NumberOption(std::string name, std::string value, Field& field, Number low, Number high, std::string help) {
    constexpr bool whole = std::is_integral_v<Number>;
    const auto text = [](Number number) { return whole ? std::to_string(number) : NumberText(number); };
    const bool open = std::is_same_v<Number, uint64_t> && high == std::numeric_limits<Number>::max();
    const std::string range = text(low) + (open ? "" : " to " + text(high));
    Option option = ValueOption(std::move(name), std::move(value), field, std::move(help),
                                (whole ? "a whole number from " : "a number from ") + range,
                                [=](std::string_view word) { return ParseBetween<Number>(word, low, high); });
    option.range = open ? "" : range;
    if constexpr (std::is_same_v<Number, Field>)
        if (!open) option.standard = text(field);
    return option;
}

/// One of a few words, each with its meaning.
template <class Field>
Option Choice(std::string name, Field& field, std::type_identity_t<std::vector<std::pair<std::string, Field>>> choices,
              std::string help) {
    std::string value, allowed, standard;
    std::vector<std::string> words;
    for (const auto& [word, meaning] : choices) {
        value += (value.empty() ? "" : "|") + word;
        allowed += (allowed.empty() ? "one of " : ", ") + word;
        if (meaning == field) standard = word;
        words.push_back(word);
    }
    const auto parse = [choices = std::move(choices)](std::string_view word) {
        for (const auto& [choice, meaning] : choices)
            if (choice == word) return std::optional<Field>(std::in_place, meaning);
        return std::optional<Field>();
    };
    Option option = ValueOption(std::move(name), value, field, std::move(help), allowed, parse);
    option.kind = WordKind::choice;
    option.choices = std::move(words);
    option.standard = std::move(standard);
    return option;
}

/// "on" or "off".
template <class Field>
Option Switch(std::string name, Field& field, std::string help) {
    return Choice(std::move(name), field, {{"on", true}, {"off", false}}, std::move(help));
}

/// The option with another kind of value, for the completion.
inline Option Completing(WordKind kind, Option option) {
    option.kind = kind;
    return option;
}

}  // namespace clarivex
