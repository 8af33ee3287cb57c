// Files and pipes on Windows.
#include "platform/file_stream.h"

#include <io.h>

#include <algorithm>

#include "platform/console.h"
#include "platform/win32.h"
#include "platform/windows/wakeable_read.h"

namespace clarivex {

namespace {

constexpr size_t mostAtOnce = 1 << 30;  // bytes that one call takes

std::optional<FileIdentity> IdentityOfHandle(HANDLE handle) {
    BY_HANDLE_FILE_INFORMATION file = {};
    if (GetFileType(handle) != FILE_TYPE_DISK || !GetFileInformationByHandle(handle, &file) ||
        (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return std::nullopt;
    return FileIdentity{file.dwVolumeSerialNumber, uint64_t{file.nFileIndexHigh} << 32 | file.nFileIndexLow};
}

}  // namespace

std::optional<FileIdentity> IdentityOf(std::FILE* stream) {
    return IdentityOfHandle(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))));
}

std::optional<FileIdentity> IdentityOf(const std::string& path) {
    constexpr DWORD everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = CreateFileA(path.c_str(), 0, everybody, nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
    const auto identity = IdentityOfHandle(handle);
    CloseHandle(handle);
    return identity;
}

size_t WriteBytes(std::FILE* stream, std::span<const uint8_t> bytes) {
    size_t written = 0;
    while (written < bytes.size()) {
        const size_t asked = std::min(bytes.size() - written, mostAtOnce);
        const int count = _write(_fileno(stream), bytes.data() + written, static_cast<unsigned>(asked));
        if (count <= 0) break;
        written += static_cast<size_t>(count);
    }
    return written;
}

std::optional<size_t> ReadBytes(std::FILE* stream, std::span<uint8_t> bytes) {
    const WakeableRead wakeable;
    const int count = _read(_fileno(stream), bytes.data(), static_cast<unsigned>(std::min(bytes.size(), mostAtOnce)));
    if (count >= 0) return static_cast<size_t>(count);
    return NotedSignal() != 0 ? std::optional<size_t>(0) : std::nullopt;
}

void EnlargePipe(std::FILE*) {}  // whoever makes a pipe decides here

}  // namespace clarivex
