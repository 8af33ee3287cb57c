// What --help and the help command print.
#pragma once

#include <string>
#include <string_view>

#include "host/command_line.h"
#include "host/option.h"

namespace clarivex {

/// What the program is, without its name and without a full stop.
extern const std::string_view programSummary;

/// What an option does, with its range and its default.
std::string MeaningOf(const Option& option);

/// The help for a command, or the overview; lines of at most 80 letters. The topic is none or a command's name.
std::string HelpText(const HelpTopic& topic);

}  // namespace clarivex
