// Signals while a stream is waited for, each in a process of its own.
#include <fcntl.h>
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
    for (const int signal : {SIGINT, SIGTERM})
        EXPECT_EXIT(
            {
                NoteSignals();
                const size_t count = ReadFromAnOpenPipe(signal);
                std::_Exit(count == 3 ? NotedSignal() : 99);
            },
            testing::ExitedWithCode(signal), "");
}

TEST(NotedSignals, AreTheFirstOneOnlyAndNoneThatWasIgnored) {
    EXPECT_EXIT(
        {
            NoteSignals();
            std::raise(SIGINT);
            std::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_IGN);
            NoteSignals();
            std::raise(SIGINT);
            std::_Exit(NotedSignal());
        },
        testing::ExitedWithCode(0), "");
}

TEST(Pipes, HoldAsMuchAsIsAllowed) {
    int plain[2], enlarged[2];
    ASSERT_EQ(pipe(plain) | pipe(enlarged), 0);
    if (fcntl(plain[0], F_SETPIPE_SZ, 1 << 20) < 0) GTEST_SKIP() << "this system allows no pipes of 1 MiB";
    const FileSource source("/dev/fd/" + std::to_string(enlarged[0]));
    EXPECT_EQ(fcntl(enlarged[0], F_GETPIPE_SZ), fcntl(plain[0], F_GETPIPE_SZ));
    for (const int end : {plain[0], plain[1], enlarged[0], enlarged[1]}) close(end);
}

}  // namespace
}  // namespace clarivex
