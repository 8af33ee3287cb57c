// The tune command: looks for settings of the engine that bring a reduced picture closest to the picture itself.
#pragma once

#include "host/command_line.h"

namespace clarivex {

/// Tunes on the bitmap options.target. Each attempt that improves prints its error to standard output, and the end a
/// table of the settings; progress and summary go to standard error. Leaves in.bmp, the reduced picture, and out.bmp,
/// what the engine makes of it with the best settings, in the current folder. Throws RunError, with the file's name in
/// front where one is to blame.
void RunTune(const TuneOptions& options);

}  // namespace clarivex
