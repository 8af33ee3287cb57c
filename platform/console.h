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

/// Has the first SIGINT or SIGTERM noted instead of ending the process, on Windows the first Ctrl-C or Ctrl-Break. ReadBytes
/// then no longer waits for input, on whichever thread. The second one ends the process at once, as it would without this
/// call; what the process was started to ignore stays ignored. Call once at start.
void NoteSignals();

/// The signal that was noted, SIGINT or SIGTERM; 0 while none has come. For any thread.
int NotedSignal();

/// Ends every wait of ReadBytes, as if its stream ended or failed there, for a program that wants no more input. From then
/// on none waits. Call behind NoteSignals.
void WakeReaders();

}  // namespace clarivex
