// Signals while a stream is waited for, each in a process of its own.
#include <unistd.h>

#include <csignal>
#include <thread>

#include "host/byte_stream.h"
#include "platform/console.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

/// Reads, on another thread, more than a pipe holds that nobody closes; gives the bytes that came.
size_t ReadFromAnOpenPipe(int signal) {
    int ends[2];
    if (pipe(ends) != 0 || write(ends[1], "abc", 3) != 3) return 0;
    FileSource source("/dev/fd/" + std::to_string(ends[0]));
    uint8_t bytes[10];
    size_t count = 0;
    std::thread reader([&] { count = source.Read(bytes); });
    usleep(50000);  // most likely it waits by now; if not, it must not begin to
    kill(getpid(), signal);
    reader.join();
    return count;
}

TEST(NotedSignals, EndTheWaitForInputOnAnyThreadAndKeepWhatCame) {
    const auto interrupted = [](int signal) {
        NoteSignals();
        std::_Exit(ReadFromAnOpenPipe(signal) == 3 ? NotedSignal() : 99);
    };
    EXPECT_EXIT(interrupted(SIGINT), testing::ExitedWithCode(SIGINT), "");
    EXPECT_EXIT(interrupted(SIGTERM), testing::ExitedWithCode(SIGTERM), "");
}

TEST(NotedSignals, AreTheFirstOneOnlyAndNoneThatWasIgnored) {
    const auto twice = [] {
        std::signal(SIGINT, SIG_IGN);
        NoteSignals();
        std::raise(SIGINT);
        if (NotedSignal() != 0) std::_Exit(99);
        std::raise(SIGTERM);
        std::raise(SIGTERM);
    };
    EXPECT_EXIT(twice(), testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace clarivex
