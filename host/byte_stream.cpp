// Files and pipes through the C library's streams: frames pass in one piece, short reads are joined.
#include "host/byte_stream.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host/errors.h"
#include "platform/console.h"

namespace clarivex {

namespace {

constexpr const char* standardStream = "-";
constexpr size_t bufferBytes = 1 << 16;  // for headers; a frame is larger and passes by the buffer

OwnedFile Open(const std::string& path, const char* mode, std::FILE* standard, const char* purpose) {
    if (path == standardStream) {
        SetBinaryMode(standard);
        return OwnedFile(standard);
    }
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw RunError(std::string("cannot be opened for ") + purpose + ": it is a folder; name a file");
    OwnedFile file(std::fopen(path.c_str(), mode));
    if (!file)
        throw RunError(std::string("cannot be opened for ") + purpose + ": " + std::strerror(errno) +
                       "; check the path");
    return file;
}

std::optional<uint64_t> RegularFileSize(const std::string& path) {
    std::error_code error;
    if (path == standardStream || !std::filesystem::is_regular_file(path, error)) return std::nullopt;
    const auto size = std::filesystem::file_size(path, error);
    return error ? std::nullopt : std::optional<uint64_t>(size);
}

[[noreturn]] void ThrowWriteError() {
    const bool closedPipe = errno == EPIPE || errno == EINVAL;  // the latter is what Windows reports
    throw RunError(std::string("cannot be written any further: ") + std::strerror(errno) +
                   (closedPipe ? "; the program that reads it must read to the end"
                               : "; check the space and rights there, or name another place"));
}

}  // namespace

void FileCloser::operator()(std::FILE* file) const {
    if (file != stdin && file != stdout) std::fclose(file);
}

FileSource::FileSource(const std::string& path)
    : file(Open(path, "rb", stdin, "reading")), size(RegularFileSize(path)) {
    std::setvbuf(file.get(), nullptr, _IOFBF, bufferBytes);
}

size_t FileSource::Read(std::span<uint8_t> bytes) {
    const size_t count = std::fread(bytes.data(), 1, bytes.size(), file.get());
    if (count < bytes.size() && std::ferror(file.get()))
        throw RunError(std::string("cannot be read any further: ") + std::strerror(errno));
    return count;
}

FileSink::FileSink(const std::string& path) : file(Open(path, "wb", stdout, "writing")) {
    std::setvbuf(file.get(), nullptr, _IOFBF, bufferBytes);
}

void FileSink::Write(std::span<const uint8_t> bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) ThrowWriteError();
}

void FileSink::Flush() {
    if (std::fflush(file.get()) != 0) ThrowWriteError();
}

bool SameFile(const std::string& input, const std::string& output) {
    const std::string source = input == standardStream ? "/dev/stdin" : input;
    std::error_code error;
    return output != standardStream && std::filesystem::equivalent(source, output, error) && !error &&
           std::filesystem::is_regular_file(source, error);
}

}  // namespace clarivex
