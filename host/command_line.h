// The command line in words turned into a structure, without touching a file.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/picture.h"

namespace clarivex {

enum class Command { enhance, info, help, version };

/// When the plug-in enlarges; the values are those of its setting.
enum class EnlargeMode : uint32_t { never = 0, automatic = 1, always = 2 };

struct EnhanceOptions {
    SampleFormat format = SampleFormat::yv12;
    EnlargeMode mode = EnlargeMode::always;
    float sharpness = 1.0f;  ///< 0 … 2
    bool lighting = true;
    bool allowHd = true;
    bool caption = false;
    bool quiet = false;
    bool timing = false;
    std::string simd = "auto";     ///< scalar, sse2, avx2, avx512 or auto
    uint64_t frames = UINT64_MAX;  ///< stop after so many, at least 1
    std::string plugin;            ///< path of a plug-in library; empty for the code linked in
    std::string input;
    std::string output;
};

struct CommandLine {
    Command command = Command::help;
    EnhanceOptions enhance;
};

/// Parses the words behind the program's name. Options may stand anywhere behind the command, as "--name value" or
/// "--name=value"; "--" ends them; "-" is a file. `--help` and `--version` win over what follows. Throws UsageError.
CommandLine ParseCommandLine(std::span<const char* const> words);

/// What `--help` prints.
extern const char* const helpText;

}  // namespace clarivex
