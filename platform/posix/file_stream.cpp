// Files and pipes on POSIX systems.
#include "platform/file_stream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/signal_pipe.h"

namespace clarivex {

namespace {

std::optional<FileIdentity> RegularFile(int result, const struct stat& status) {
    if (result != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

/// Whether the last write may be made again; waits until then.
bool WaitForRoom(std::FILE* stream) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN) return false;
    pollfd waited{fileno(stream), POLLOUT, 0};
    return poll(&waited, 1, -1) > 0 || errno == EINTR;
}

/// Waits until there is something to read or the stream's end, which is worth a read; false when a signal has come first.
bool WaitForInput(std::FILE* stream) {
    pollfd waited[] = {{fileno(stream), POLLIN, 0}, {SignalPipe(), POLLIN, 0}};
    while (poll(waited, 2, -1) < 0 && errno == EINTR) continue;
    return waited[0].revents != 0 || waited[1].revents == 0;
}

}  // namespace

std::optional<FileIdentity> IdentityOf(std::FILE* stream) {
    struct stat status {};
    return RegularFile(fstat(fileno(stream), &status), status);
}

std::optional<FileIdentity> IdentityOf(const std::string& path) {
    struct stat status {};
    return RegularFile(stat(path.c_str(), &status), status);
}

size_t WriteBytes(std::FILE* stream, std::span<const uint8_t> bytes) {
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = write(fileno(stream), bytes.data() + written, bytes.size() - written);
        if (count > 0)
            written += static_cast<size_t>(count);
        else if (count == 0)
            errno = EIO;  // nothing taken and nothing said: it would go on for ever
        if (count == 0 || (count < 0 && !WaitForRoom(stream))) break;
    }
    return written;
}

std::optional<size_t> ReadBytes(std::FILE* stream, std::span<uint8_t> bytes) {
    while (WaitForInput(stream)) {
        const ssize_t count = read(fileno(stream), bytes.data(), bytes.size());
        if (count >= 0) return static_cast<size_t>(count);
        if (errno != EINTR && errno != EAGAIN) return std::nullopt;
    }
    return 0;
}

void EnlargePipe(std::FILE* stream) {
    const int present = fcntl(fileno(stream), F_GETPIPE_SZ);
    if (present < 0) return;
    constexpr int enough = 1 << 19;  // more would leave the processor's cache before the other end reads it
    for (int bytes = enough; bytes > present && fcntl(fileno(stream), F_SETPIPE_SZ, bytes) < 0; bytes /= 2) continue;
}

}  // namespace clarivex
