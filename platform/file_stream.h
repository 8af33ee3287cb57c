// What reading and writing files needs from the system beyond the C library's streams.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

namespace clarivex {

/// Hands bytes to the system, past the stream's own buffer, which must be empty. Waits for a slow reader even where the
/// stream was opened not to wait. Gives the bytes written: fewer than given when the system takes no more, and errno
/// says why.
size_t WriteBytes(std::FILE* stream, std::span<const uint8_t> bytes);

/// For a read that failed just now, errno telling why. If there was only nothing yet to read, waits until there is or the
/// stream ends, and gives true: reading goes on.
bool WaitForInput(std::FILE* stream);

}  // namespace clarivex
