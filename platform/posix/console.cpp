// Console and pipes on POSIX systems.
#include "platform/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace clarivex {

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

void SetBinaryMode(std::FILE*) {}  // streams never change bytes here

void FillStandardStreams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0)  // the lowest free number is given out, so this one
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

void ReportFailedWrites() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace clarivex
