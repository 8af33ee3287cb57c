// What reading and writing files needs from the system beyond the C library's streams.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>

namespace clarivex {

/// What tells a file from all others of the machine, whatever name it goes by.
struct FileIdentity {
    uint64_t device = 0;
    uint64_t file = 0;

    bool operator==(const FileIdentity&) const = default;
};

/// The file at the other end of a stream or at a path. Nothing for what is no regular file: a pipe, a device, a folder,
/// a path that leads nowhere.
std::optional<FileIdentity> IdentityOf(std::FILE* stream);
std::optional<FileIdentity> IdentityOf(const std::string& path);

/// Hands bytes to the system, past the stream's own buffer, which must be empty. Waits for a slow reader even where the
/// stream was opened not to wait. Gives the bytes written: fewer than given when the system takes no more, and errno
/// says why.
size_t WriteBytes(std::FILE* stream, std::span<const uint8_t> bytes);

/// For a read that failed just now, errno telling why. If there was only nothing yet to read, waits until there is or the
/// stream ends, and gives true: reading goes on.
bool WaitForInput(std::FILE* stream);

}  // namespace clarivex
