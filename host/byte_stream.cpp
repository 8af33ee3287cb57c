// Files and pipes past the C library's buffers: frames pass in one piece, short reads are joined.
#include "host/byte_stream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "host/naming.h"
#include "platform/console.h"
#include "platform/file_stream.h"
#include "platform/paths.h"

namespace clarivex {

namespace {

constexpr const char* standardStream = "-";
constexpr size_t bufferBytes = 1 << 16;  // for headers; what is larger passes by the buffer

OwnedFile Open(const std::string& path, const char* mode, std::FILE* standard, const char* purpose) {
    if (path == standardStream) {
        SetBinaryMode(standard);
        return OwnedFile(standard);
    }
    std::error_code ignored;
    if (std::filesystem::is_directory(PathOf(path), ignored))
        throw RunError(std::string("cannot be opened for ") + purpose + ": it is a folder; name a file");
    OwnedFile file(std::fopen(path.c_str(), mode));
    if (!file)
        throw RunError(std::string("cannot be opened for ") + purpose + ": " + std::strerror(errno) +
                       "; check the path");
    return file;
}

std::optional<uint64_t> RegularFileSize(const std::string& path) {
    std::error_code error;
    if (path == standardStream || !std::filesystem::is_regular_file(PathOf(path), error)) return std::nullopt;
    const auto size = std::filesystem::file_size(PathOf(path), error);
    return error ? std::nullopt : std::optional<uint64_t>(size);
}

std::optional<FileIdentity> Identity(const std::string& path, std::FILE* standard) {
    return path == standardStream ? IdentityOf(standard) : IdentityOf(path);
}

[[noreturn]] void ThrowWriteError() {
    const bool closedPipe = errno == EPIPE || errno == EINVAL;  // the latter is what Windows reports
    throw RunError(std::string("cannot be written any further: ") + std::strerror(errno) +
                   (closedPipe ? "; the program that reads it must read to the end"
                               : "; check the space, rights and limits there, or name another place"));
}

}  // namespace

void FileCloser::operator()(std::FILE* file) const {
    if (file != stdin && file != stdout) std::fclose(file);
}

FileSource::FileSource(const std::string& path)
    : file(Open(path, "rb", stdin, "reading")), size(RegularFileSize(path)), buffer(bufferBytes) {
    EnlargePipe(file.get());
}

FileSource::FileSource(OwnedFile pipe) : file(std::move(pipe)), buffer(bufferBytes) {}

size_t FileSource::Read(std::span<uint8_t> bytes) {
    size_t count = 0;
    while (count < bytes.size()) {
        const size_t more = ReadSome(bytes.subspan(count));
        if (more == 0) break;
        count += more;
    }
    return count;
}

size_t FileSource::ReadFromSystem(std::span<uint8_t> bytes) {
    const auto count = ReadBytes(file.get(), bytes);
    if (!count) throw RunError(std::string("cannot be read any further: ") + std::strerror(errno));
    return *count;
}

/// What was read ahead, or what the system has: small pieces by way of the buffer.
size_t FileSource::ReadSome(std::span<uint8_t> bytes) {
    if (ahead.empty() && bytes.size() >= buffer.size()) return ReadFromSystem(bytes);
    if (ahead.empty()) ahead = std::span(buffer).first(ReadFromSystem(buffer));
    const size_t count = std::min(bytes.size(), ahead.size());
    std::copy_n(ahead.begin(), count, bytes.begin());
    ahead = ahead.subspan(count);
    return count;
}

std::span<const uint8_t> FileSource::Peek(size_t count) {
    std::copy(ahead.begin(), ahead.end(), buffer.begin());  // to the front: there is room behind for all that is asked
    size_t there = ahead.size();
    while (there < count) {
        const size_t more = ReadFromSystem(std::span(buffer).subspan(there));
        if (more == 0) break;
        there += more;
    }
    ahead = std::span(buffer).first(there);
    return ahead.first(std::min(count, there));
}

FileSink::FileSink(const std::string& path) : file(Open(path, "wb", stdout, "writing")) { EnlargePipe(file.get()); }

FileSink::FileSink(OwnedFile pipe) : file(std::move(pipe)) {}

void FileSink::Write(std::span<const uint8_t> bytes) {
    if (waiting.size() + bytes.size() > bufferBytes) Flush();
    if (bytes.size() > bufferBytes)
        WriteOut(bytes);
    else
        waiting.insert(waiting.end(), bytes.begin(), bytes.end());
}

void FileSink::Flush() {
    WriteOut(waiting);
    waiting.clear();
}

void FileSink::Close() {
    Flush();
    std::FILE* const closed = file.release();
    if (closed != stdout && std::fclose(closed) != 0) ThrowWriteError();
}

void FileSink::WriteOut(std::span<const uint8_t> bytes) {
    if (WriteBytes(file.get(), bytes) != bytes.size()) ThrowWriteError();
}

void PrintResult(std::string_view text) {
    Naming(OutputName(standardStream), [&] {
        FileSink sink(standardStream);
        sink.Write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
        sink.Close();
    });
}

bool SameFile(const std::string& input, const std::string& output) {
    const auto source = Identity(input, stdin);
    return source && source == Identity(output, stdout);
}

}  // namespace clarivex
