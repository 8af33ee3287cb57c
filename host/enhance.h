// The enhance command: a Y4M stream through the media object into another.
#pragma once

#include "host/command_line.h"

namespace clarivex {

/// Enhances options.input into options.output. Notes, progress, summary and times go to standard error. Throws RunError
/// with the file's name in front, UsageError for a combination that this program does not offer. Frames written before
/// an error are complete.
void RunEnhance(const EnhanceOptions& options);

}  // namespace clarivex
