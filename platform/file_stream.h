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

/// Reads what there is, past the stream's own buffer, which must be empty; waits until there is something, even where the
/// stream was opened not to wait. What there is comes even after a signal, but it is no longer waited for.
///
/// result  bytes read; 0 at the stream's end, and where NoteSignals in platform/console.h has a signal noted while nothing is
///         there. Nothing when the system cannot read, and errno says why.
std::optional<size_t> ReadBytes(std::FILE* stream, std::span<uint8_t> bytes);

/// Has a pipe hold 512 KiB, as far as the system allows; without effect on what is no pipe.
void EnlargePipe(std::FILE* stream);

}  // namespace clarivex
