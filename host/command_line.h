// The command line in words turned into a structure, without touching a file.
#pragma once

#include <span>
#include <string>

#include "host/options.h"
#include "play/play_settings.h"

namespace clarivex {

enum class Command { enhance, play, compare, caption, tune, info, help, version };

/// What help is asked for.
struct HelpTopic {
    std::string command;  ///< its name; empty for an overview of all
};

struct CommandLine {
    Command command = Command::help;
    EnhanceOptions enhance;
    PlaySettings play;
    CompareOptions compare;
    CaptionOptions caption;
    TuneOptions tune;
    HelpTopic help;
};

/// Parses the words behind the program's name. Options may stand anywhere behind the command, as "--name value" or
/// "--name=value"; "--" ends them; "-" is a file. `--help` and `--version` win over all else. Throws UsageError.
CommandLine ParseCommandLine(std::span<const char* const> words);

}  // namespace clarivex
