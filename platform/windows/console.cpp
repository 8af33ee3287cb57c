// Console and pipes on Windows.
#include "platform/console.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <mutex>
#include <vector>

#include "platform/win32.h"
#include "platform/windows/wakeable_read.h"

namespace clarivex {

namespace {

std::atomic<int> notedSignal = 0;

/// The threads that are inside a read, by their numbers.
std::mutex readersLock;
std::vector<DWORD> readers;

bool WakeThoseThere() {
    const std::lock_guard guard(readersLock);
    for (const DWORD reader : readers) {
        const HANDLE thread = OpenThread(THREAD_TERMINATE, FALSE, reader);
        if (thread == nullptr) continue;
        CancelSynchronousIo(thread);
        CloseHandle(thread);
    }
    return !readers.empty();
}

/// Runs on a thread of its own.
BOOL WINAPI NoteSignal(DWORD event) {
    int none = 0;
    if ((event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) || !notedSignal.compare_exchange_strong(none, SIGINT))
        return FALSE;
    WakeReaders();
    return TRUE;
}

}  // namespace

WakeableRead::WakeableRead() {
    const std::lock_guard guard(readersLock);
    readers.push_back(GetCurrentThreadId());
}

WakeableRead::~WakeableRead() {
    const std::lock_guard guard(readersLock);
    readers.erase(std::find(readers.begin(), readers.end(), GetCurrentThreadId()));
}

bool IsTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

void SetBinaryMode(std::FILE* stream) { _setmode(_fileno(stream), _O_BINARY); }

void FillStandardStreams() {
    const auto fill = [](std::FILE* stream, const char* mode) {
        if (_fileno(stream) < 0 || _get_osfhandle(_fileno(stream)) < 0) std::freopen("NUL", mode, stream);
    };
    fill(stdin, "w");
    fill(stdout, "r");
    fill(stderr, "r");
}

void ReportFailedWrites() {}  // such a write returns an error here by itself

void NoteSignals() { SetConsoleCtrlHandler(NoteSignal, TRUE); }

int NotedSignal() { return notedSignal.load(); }

void WakeReaders() {
    while (WakeThoseThere()) Sleep(10);  // one may be on its way into the wait: until none is left
}

}  // namespace clarivex
