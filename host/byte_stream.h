// Bytes in and out of files and pipes, "-" being standard input or output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace clarivex {

class ByteSource {
public:
    virtual ~ByteSource() = default;

    /// Fills `bytes` from the stream. The result is below bytes.size() only at the end of the stream. Throws RunError
    /// when the system cannot read.
    virtual size_t Read(std::span<uint8_t> bytes) = 0;

    /// Whether another program may be filling the stream.
    virtual bool MayBePiped() const { return false; }
};

class ByteSink {
public:
    virtual ~ByteSink() = default;

    /// Writes all bytes. Throws RunError when the system cannot, a closed pipe included.
    virtual void Write(std::span<const uint8_t> bytes) = 0;

    /// Hands everything written so far to the system. Throws RunError.
    virtual void Flush() = 0;
};

struct FileCloser {
    void operator()(std::FILE* file) const;  ///< leaves the standard streams open
};
using OwnedFile = std::unique_ptr<std::FILE, FileCloser>;

/// A file opened for reading, or standard input for "-". Once a signal is noted (platform/console.h) the stream ends where
/// it would have to wait for more.
class FileSource : public ByteSource {
public:
    /// Throws RunError when the path cannot be opened.
    explicit FileSource(const std::string& path);

    /// Reads a pipe that is open already.
    explicit FileSource(OwnedFile pipe);

    size_t Read(std::span<uint8_t> bytes) override;

    bool MayBePiped() const override { return !size; }

    /// What the stream goes on with, still to be read: `count` bytes, fewer only where it ends before. Valid until the
    /// next read. count at most 4096. Throws RunError when the system cannot read.
    std::span<const uint8_t> Peek(size_t count);

    /// Bytes of the whole file; nothing for a pipe or a device.
    std::optional<uint64_t> Size() const { return size; }

private:
    size_t ReadSome(std::span<uint8_t> bytes);
    size_t ReadFromSystem(std::span<uint8_t> bytes);

    OwnedFile file;
    std::optional<uint64_t> size;
    std::vector<uint8_t> buffer;
    std::span<const uint8_t> ahead;  // of the buffer, read but not yet given out
};

/// A file opened anew for writing, or standard output for "-". What is neither flushed nor closed may not arrive.
class FileSink : public ByteSink {
public:
    /// Throws RunError when the path cannot be opened.
    explicit FileSink(const std::string& path);

    /// Writes to a pipe that is open already.
    explicit FileSink(OwnedFile pipe);

    void Write(std::span<const uint8_t> bytes) override;
    void Flush() override;

    /// Flushes and closes; a standard stream stays open. Throws RunError when the system could not keep what was written.
    /// Nothing may be written behind it.
    void Close();

private:
    void WriteOut(std::span<const uint8_t> bytes);

    OwnedFile file;
    std::vector<uint8_t> waiting;
};

/// Writes a text to standard output at once. Throws RunError with the stream's name in front.
void PrintResult(std::string_view text);

/// Whether an input and an output are one existing file; "-" is the file that standard input or output was led to.
bool SameFile(const std::string& input, const std::string& output);

}  // namespace clarivex
