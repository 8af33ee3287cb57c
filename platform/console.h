// What a program on a console or in a pipe needs from the system.
#pragma once

#include <cstdio>

namespace clarivex {

/// Whether a person reads this stream: it is a terminal, neither file nor pipe.
bool IsTerminal(std::FILE* stream);

/// Passes bytes through unchanged from here on, line ends included. Call before the first read or write.
void SetBinaryMode(std::FILE* stream);

/// Makes a write to a closed pipe fail with a code instead of ending the process. Call once at start.
void ReportClosedPipes();

}  // namespace clarivex
