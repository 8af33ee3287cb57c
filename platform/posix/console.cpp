// Console and pipes on POSIX systems.
#include "platform/console.h"

#include <unistd.h>

#include <csignal>

namespace clarivex {

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

void SetBinaryMode(std::FILE*) {}  // streams never change bytes here

void ReportClosedPipes() { std::signal(SIGPIPE, SIG_IGN); }

}  // namespace clarivex
