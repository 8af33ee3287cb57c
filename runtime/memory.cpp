#include "runtime/memory.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "runtime/diagnostics.h"

namespace clarivex {
namespace {

RawAllocator rawAllocator = std::malloc;

constexpr const char* reallocFailed = "MemAlloc : realloc() failed";

bool PauseForEver(size_t /*bytes*/, uint32_t /*waitedMilliseconds*/) {
    Sleep(retryMilliseconds);
    return true;
}

MemoryWait memoryWait = PauseForEver;

thread_local int32_t impatience = 0;

/// Stands just before the bytes of a block. `raw` comes last: it is the word that AlignedFree looks for.
struct BlockHeader {
    size_t size;
    void* raw;
};

constexpr size_t smallestAlignment = sizeof(void*);

/// More than this no allocator can give: the size, its header and its alignment must fit the address space.
constexpr size_t largestRequest = std::numeric_limits<size_t>::max() - sizeof(BlockHeader) - blockAlignment;

BlockHeader* HeaderOf(void* pointer) {
    const uintptr_t address = reinterpret_cast<uintptr_t>(pointer) & ~(smallestAlignment - 1);
    return reinterpret_cast<BlockHeader*>(address) - 1;
}

}  // namespace

MemoryWait SetMemoryWait(MemoryWait wait) { return std::exchange(memoryWait, wait); }

MemoryImpatience::MemoryImpatience() { ++impatience; }
MemoryImpatience::~MemoryImpatience() { --impatience; }

void MemoryShortage::Wait() {
    if (impatience > 0) throw text;
    if (waited == 0 && bytes != 0)
        Trace("MemAlloc : waiting for %lu bytes", static_cast<unsigned long>(bytes));
    else if (waited == 0)
        Trace("MemAlloc : waiting for memory");
    if (!memoryWait(bytes, waited)) throw text;
    waited += retryMilliseconds;
}

RawAllocator SetRawAllocator(RawAllocator allocator) { return std::exchange(rawAllocator, allocator); }

void* AlignedAlloc(size_t size, size_t alignment) {
    if (!std::has_single_bit(alignment)) {
        errno = EINVAL;
        return nullptr;
    }
    alignment = std::max(alignment, smallestAlignment);
    const size_t overhead = sizeof(BlockHeader) + alignment;
    if (size > std::numeric_limits<size_t>::max() - overhead) return nullptr;
    void* raw = rawAllocator(size + overhead);
    if (raw == nullptr) return nullptr;
    const uintptr_t address = (reinterpret_cast<uintptr_t>(raw) + overhead) & ~(alignment - 1);
    auto* pointer = reinterpret_cast<void*>(address);
    *HeaderOf(pointer) = {size, raw};
    return pointer;
}

void* AlignedRealloc(void* pointer, size_t size, size_t alignment) {
    if (pointer == nullptr) {
        errno = EINVAL;
        return nullptr;
    }
    void* grown = AlignedAlloc(size, alignment);
    if (grown != nullptr) {
        std::memcpy(grown, pointer, std::min(HeaderOf(pointer)->size, size));
        AlignedFree(pointer);
    }
    return grown;
}

void AlignedFree(void* pointer) {
    if (pointer != nullptr) std::free(HeaderOf(pointer)->raw);
}

void* AllocRetry(size_t size) {
    if (size == 0) return nullptr;
    if (size > largestRequest) throw MemoryShortage::mallocFailed;
    for (MemoryShortage shortage(size);;) {
        if (void* block = AlignedAlloc(size, blockAlignment)) return block;
        shortage.Wait();
    }
}

void* ReallocRetry(void* pointer, size_t size) {
    if (pointer == nullptr) return AllocRetry(size);
    if (size == 0) {
        AlignedFree(pointer);
        return nullptr;
    }
    if (size > largestRequest) throw reallocFailed;
    for (MemoryShortage shortage(size, reallocFailed);;) {
        if (void* block = AlignedRealloc(pointer, size, blockAlignment)) return block;
        shortage.Wait();
    }
}

}  // namespace clarivex
