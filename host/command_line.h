// The command line in words turned into a structure, without touching a file.
#pragma once

#include <span>

#include "host/options.h"

namespace clarivex {

enum class Command { enhance, compare, caption, tune, info, help, version };

struct CommandLine {
    Command command = Command::help;
    EnhanceOptions enhance;
    CompareOptions compare;
    CaptionOptions caption;
    TuneOptions tune;
};

/// Parses the words behind the program's name. Options may stand anywhere behind the command, as "--name value" or
/// "--name=value"; "--" ends them; "-" is a file. `--help` and `--version` win over what follows. Throws UsageError.
CommandLine ParseCommandLine(std::span<const char* const> words);

/// What `--help` prints.
extern const char* const helpText;

}  // namespace clarivex
