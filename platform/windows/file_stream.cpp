// Files and pipes on Windows.
#include "platform/file_stream.h"

#include <io.h>

#include <algorithm>

namespace clarivex {

size_t WriteBytes(std::FILE* stream, std::span<const uint8_t> bytes) {
    constexpr size_t mostAtOnce = 1 << 30;
    size_t written = 0;
    while (written < bytes.size()) {
        const size_t asked = std::min(bytes.size() - written, mostAtOnce);
        const int count = _write(_fileno(stream), bytes.data() + written, static_cast<unsigned>(asked));
        if (count <= 0) break;
        written += static_cast<size_t>(count);
    }
    return written;
}

bool WaitForInput(std::FILE*) { return false; }  // streams always wait here

}  // namespace clarivex
