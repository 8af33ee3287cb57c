// Counts what a test allocates through AlignedAlloc, and makes memory short for a while.
#pragma once

#include <cstdlib>

#include "runtime/memory.h"

namespace clarivex {

/// From its construction to its destruction. One at a time.
class MemoryCount {
public:
    /// failures  attempts that find no memory before the first one that does
    explicit MemoryCount(int32_t failures = 0) : previous(SetRawAllocator(Allocate)) {
        attempts = 0;
        bytes = 0;
        failuresLeft = failures;
    }
    ~MemoryCount() { SetRawAllocator(previous); }
    MemoryCount(const MemoryCount&) = delete;
    MemoryCount& operator=(const MemoryCount&) = delete;

    [[nodiscard]] static int32_t Attempts() { return attempts; }
    [[nodiscard]] static size_t Bytes() { return bytes; }

private:
    static void* Allocate(size_t size) {
        ++attempts;
        bytes += size;
        return failuresLeft-- > 0 ? nullptr : std::malloc(size);
    }

    static inline int32_t attempts = 0;
    static inline size_t bytes = 0;
    static inline int32_t failuresLeft = 0;
    RawAllocator previous;
};

}  // namespace clarivex
