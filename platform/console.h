// What a program on a console or in a pipe needs from the system.
#pragma once

#include <cstdio>

namespace clarivex {

/// Whether a person reads this stream: it is a terminal, neither file nor pipe.
bool IsTerminal(std::FILE* stream);

/// Passes bytes through unchanged from here on, line ends included. Call before the first read or write.
void SetBinaryMode(std::FILE* stream);

/// Puts the null device, opened the wrong way round, in place of the standard streams that the process was started
/// without: no file opened later takes their place, and using one of them fails. Call once at start, first of all.
void FillStandardStreams();

/// Makes a write that cannot be done, to a closed pipe or beyond a limit of the file's size, fail with a code instead of
/// ending the process. Call once at start.
void ReportFailedWrites();

}  // namespace clarivex
