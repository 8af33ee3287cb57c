// The caption command: one frame of the opening caption as a picture.
#pragma once

#include "host/command_line.h"

namespace clarivex {

/// What a person is told where the caption cannot be drawn.
extern const char* const noFontText;

/// Writes the caption of options.frame over grey as a Y4M stream of one frame. Throws RunError with the file's name in
/// front, or one that says that there is no font.
void RunCaption(const CaptionOptions& options);

}  // namespace clarivex
