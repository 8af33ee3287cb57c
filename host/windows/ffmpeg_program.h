// The ffmpeg.exe that a person has: where it is, its runs and its last words.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/child_process.h"

namespace clarivex {

/// What follows "ffmpeg", in the process's code page.
using FfmpegArguments = std::vector<std::string>;

/// Starts the ffmpeg.exe beside this program, or else the first in PATH. Throws RunError, also where there is none.
std::unique_ptr<ChildProcess> StartFfmpeg(const FfmpegArguments& arguments, ChildProcess::Pipe pipe);

/// How a run went.
struct FfmpegRun {
    uint32_t code = 0;
    std::string output;
    std::string errors;
};

/// Runs ffmpeg.exe to its end, without any input. Throws RunError where it cannot be started, or a signal came.
FfmpegRun RunFfmpeg(const FfmpegArguments& arguments);

/// What a program complained of, line by line: without names of its parts, its lines of progress and empty ones.
std::vector<std::string> Complaints(std::string_view errors);

/// How a run that failed is told: "ffmpeg.exe failed: …" with the last of what it complained of.
std::string FailureText(uint32_t code, std::string_view errors);

}  // namespace clarivex
