// Makes memory short for chosen allocations of a test: those of the language's new and those of AlignedAlloc, in the
// order in which they come.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/memory.h"

namespace clarivex {

/// From its construction to its destruction, on its own thread. One at a time. Waiting for memory takes no time meanwhile.
class ShortMemory {
public:
    static constexpr int32_t forEver = INT32_MAX;

    /// first   allocation that finds no memory, counted from 0
    /// count   how many in a row do so
    /// waits   false: who would wait gives up
    ShortMemory(int32_t first, int32_t count, bool waits = true);
    ~ShortMemory();
    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;

    /// Allocations tried so far, failed ones with them.
    [[nodiscard]] static int32_t Attempts();

private:
    RawAllocator previousAllocator;
    MemoryWait previousWait;
};

}  // namespace clarivex
