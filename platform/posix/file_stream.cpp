// Files and pipes on POSIX systems.
#include "platform/file_stream.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace clarivex {

namespace {

std::optional<FileIdentity> RegularFile(int result, const struct stat& status) {
    if (result != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

/// Whether the last call may be made again; waits until then.
bool WaitUntilReady(std::FILE* stream, short event) {
    if (errno == EINTR) return true;
    if (errno != EAGAIN) return false;
    pollfd waited{fileno(stream), event, 0};
    return poll(&waited, 1, -1) > 0 || errno == EINTR;
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
        if (count == 0 || (count < 0 && !WaitUntilReady(stream, POLLOUT))) break;
    }
    return written;
}

bool WaitForInput(std::FILE* stream) {
    if (!WaitUntilReady(stream, POLLIN)) return false;
    std::clearerr(stream);
    return true;
}

}  // namespace clarivex
