// The caption command: one frame of the opening caption as a picture.
#pragma once

#include "host/command_line.h"

namespace clarivex {

/// Writes the caption of options.frame over grey as a Y4M stream of one frame. Throws RunError with the file's name in
/// front.
void RunCaption(const CaptionOptions& options);

}  // namespace clarivex
