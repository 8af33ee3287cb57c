// The parts of an option that do not depend on the type of its value.
#include "host/option.h"

#include <array>

#include "host/errors.h"

namespace clarivex {

void ThrowBadValue(std::string_view option, std::string_view value, const std::string& allowed) {
    throw UsageError(std::string(option) + " " + Printable(value) + ": the value must be " + allowed);
}

std::string NumberText(double number) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

Option Flag(std::string name, std::string alias, bool& field, std::string help) {
    Option option{.name = std::move(name), .alias = std::move(alias), .help = std::move(help)};
    option.apply = [&field](std::string_view) { field = true; };
    return option;
}

}  // namespace clarivex
