// Console and pipes on POSIX systems.
#include "platform/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

#include "platform/posix/signal_pipe.h"

namespace clarivex {

namespace {

int signalPipe[2] = {-1, -1};
std::atomic<int> notedSignal = 0;

/// Only what a handler may do: the next signal is the system's again, and who waits is woken.
void NoteSignal(int signal) {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    notedSignal.store(signal);
    const int interrupted = errno;  // belongs to whatever this thread was about
    WakeReaders();
    errno = interrupted;
}

void Note(int signal) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
    action.sa_handler = NoteSignal;
    action.sa_flags = SA_RESTART;  // calls that know nothing of signals go on
    sigaction(signal, &action, nullptr);
}

}  // namespace

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

void NoteSignals() {
    if (pipe2(signalPipe, O_CLOEXEC) != 0) return;
    Note(SIGINT);
    Note(SIGTERM);
}

int NotedSignal() { return notedSignal.load(); }

void WakeReaders() { [[maybe_unused]] const ssize_t written = write(signalPipe[1], "", 1); }

int SignalPipe() { return signalPipe[0]; }

}  // namespace clarivex
