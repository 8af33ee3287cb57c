// Byte streams in memory, for tests and fuzzers.
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include "host/byte_stream.h"
#include "host/errors.h"

namespace clarivex {

/// Reads from memory that it does not own.
class MemorySource : public ByteSource {
public:
    explicit MemorySource(std::span<const uint8_t> given) : rest(given) {}
    explicit MemorySource(std::string_view text) : rest(reinterpret_cast<const uint8_t*>(text.data()), text.size()) {}

    size_t Read(std::span<uint8_t> bytes) override {
        const size_t count = std::min(bytes.size(), rest.size());
        std::copy_n(rest.begin(), count, bytes.begin());
        rest = rest.subspan(count);
        return count;
    }

private:
    std::span<const uint8_t> rest;
};

/// Collects what is written, up to a number of bytes; then it fails as a full disk does.
class MemorySink : public ByteSink {
public:
    explicit MemorySink(size_t most = SIZE_MAX) : room(most) {}

    void Write(std::span<const uint8_t> bytes) override {
        if (bytes.size() > room) throw RunError("no room");
        room -= bytes.size();
        text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    void Flush() override { flushedBytes = text.size(); }

    std::string text;
    size_t flushedBytes = 0;

private:
    size_t room;
};

}  // namespace clarivex
