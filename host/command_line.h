// The command line in words turned into a structure, without touching a file.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "host/picture.h"
#include "shell/tuning.h"

namespace clarivex {

enum class Command { enhance, caption, tune, info, help, version };

/// When the plug-in enlarges; the values are those of its setting.
enum class EnlargeMode : uint32_t { never = 0, automatic = 1, always = 2 };

struct EnhanceOptions {
    SampleFormat format = SampleFormat::yv12;
    EnlargeMode mode = EnlargeMode::always;
    float sharpness = 1.0f;  ///< 0 … 2
    bool lighting = true;
    bool allowHd = true;
    std::optional<bool> caption;  ///< shown or not; without a word of it, not shown by the code linked in
    bool quiet = false;
    bool timing = false;
    std::string simd = "auto";     ///< scalar, sse2, avx2, avx512 or auto
    uint64_t frames = UINT64_MAX;  ///< stop after so many, at least 1
    std::string plugin;            ///< path of a plug-in library; empty for the code linked in
    std::string input;
    std::string output;
};

constexpr int32_t largestCaptionFrame = 1000;  ///< well behind the caption's end, which can be looked at too

struct CaptionOptions {
    int32_t frame = 100;  ///< 1 … largestCaptionFrame
    PictureSize size{960, 720};
    Ratio sampleAspect{1, 1};
    std::string output;
};

constexpr int32_t mostTuningAttempts = 1000000;

struct TuneOptions {
    TuningOptions tuning;  ///< attempts: 1 … mostTuningAttempts
    bool quiet = false;
    std::string target;
};

struct CommandLine {
    Command command = Command::help;
    EnhanceOptions enhance;
    CaptionOptions caption;
    TuneOptions tune;
};

/// Parses the words behind the program's name. Options may stand anywhere behind the command, as "--name value" or
/// "--name=value"; "--" ends them; "-" is a file. `--help` and `--version` win over what follows. Throws UsageError.
CommandLine ParseCommandLine(std::span<const char* const> words);

/// What `--help` prints.
extern const char* const helpText;

}  // namespace clarivex
