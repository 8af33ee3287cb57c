// Which of the doors a video goes through: Y4M streams the exact one, all others FFmpeg's libraries.
#pragma once

#include <memory>
#include <string>

#include "host/options.h"
#include "host/report.h"
#include "host/video_stream.h"

namespace clarivex {

/// Opens a file, or standard input for "-": as Y4M if it begins so, otherwise as a film. Throws RunError with the name in
/// front.
///
/// withCompanions  the packets of a film's other streams come with its frames
std::unique_ptr<VideoReader> OpenVideo(const std::string& path, const PartOptions& part, Deinterlacing deinterlacing,
                                       bool withCompanions, Report& report);

/// Whether an output is written as Y4M: standard output, what is no regular file, and what is named so.
bool IsY4mOutput(const std::string& path);

/// Starts an output. Throws RunError with the name in front, also when it is the input itself.
///
/// video  of the pictures written
std::unique_ptr<VideoWriter> MakeVideo(const std::string& path, const std::string& input, const VideoInfo& video,
                                       bool fullHeightChroma, const EnhanceOptions& options, Report& report);

}  // namespace clarivex
