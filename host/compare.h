// The compare command: the same frame enlarged plainly and enhanced, as one picture.
#pragma once

#include "host/command_line.h"

namespace clarivex {

/// Shows a frame of options.input plainly enlarged and enhanced, in the PNG file options.output. Throws RunError with the
/// file's name in front, UsageError for a combination that this program does not offer.
void RunCompare(const CompareOptions& options);

}  // namespace clarivex
