// Aligned memory with a policy: whoever asks for memory waits until there is some, or until the process gives up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "platform/win32.h"

namespace clarivex {

/// Alignment of every block from AllocRetry, wide enough for any vector load.
constexpr size_t blockAlignment = 64;

/// Pause between two attempts while memory is short.
constexpr uint32_t retryMilliseconds = 100;

/// How a thread waits while memory is short: called between two attempts, from any thread and more than one at a time.
///
/// bytes               that could not be had; 0 where the size is not known
/// waitedMilliseconds  how long this request has waited already
/// result              false gives up: the request then throws instead of being tried again
using MemoryWait = bool (*)(size_t bytes, uint32_t waitedMilliseconds);

/// The process's way of waiting: a pause of retryMilliseconds and no end, or what a program that would rather give up
/// puts in its place. Returns the one that was set before. Not to be called while other threads allocate.
MemoryWait SetMemoryWait(MemoryWait wait);

/// While one lives, what finds no memory on its thread gives up at once, whatever the process's way of waiting. They may
/// stand one inside the other.
class MemoryImpatience {
public:
    MemoryImpatience();
    ~MemoryImpatience();
    MemoryImpatience(const MemoryImpatience&) = delete;
    MemoryImpatience& operator=(const MemoryImpatience&) = delete;
};

/// One request that found no memory, between its attempts.
class MemoryShortage {
public:
    static constexpr const char* mallocFailed = "MemAlloc : malloc() failed";

    /// bytes  asked for, or 0
    /// text   what giving up throws
    explicit MemoryShortage(size_t bytes, const char* text = mallocFailed) : bytes(bytes), text(text) {}

    /// Waits for a while. The first time it tells the debugger what is waited for.
    ///
    /// throws  the text, when the thread is impatient or the process's way of waiting gives up
    void Wait();

private:
    size_t bytes;
    const char* text;
    uint32_t waited = 0;
};

/// `size` bytes at a multiple of `alignment`, not cleared; give them to AlignedFree.
///
/// alignment  a power of two; less than a pointer's size counts as that size. Anything else sets errno to EINVAL (22).
/// result     null when the alignment is bad or memory is short.
void* AlignedAlloc(size_t size, size_t alignment);

/// A block of the new size with the old one's bytes, as many as both hold; the old one is freed. The alignment may be
/// another one.
///
/// result  null when the pointer is null or the alignment bad (errno 22), or when memory is short; the old block is
///         then left alone.
void* AlignedRealloc(void* pointer, size_t size, size_t alignment);

/// Frees a block of the functions in this header; null is ignored.
void AlignedFree(void* pointer);

/// AlignedAlloc with blockAlignment that tries again every 100 ms, for as long as it takes. Size 0 gives null and
/// allocates nothing.
///
/// throws  the text "MemAlloc : malloc() failed" for a size beyond the address space, which no waiting brings, and where
///         the process gives up waiting.
void* AllocRetry(size_t size);

/// AlignedRealloc by the same policy. A null pointer is a fresh block; size 0 frees the block and gives null.
///
/// throws  the text "MemAlloc : realloc() failed" for a size beyond the address space, and where the process gives up.
void* ReallocRetry(void* pointer, size_t size);

/// Where AlignedAlloc gets its bytes: malloc, or what a test puts in its place to make memory short. Blocks from it go
/// to free.
using RawAllocator = void* (*)(size_t size);

/// Returns the allocator that was set before. Not to be called while other threads allocate.
RawAllocator SetRawAllocator(RawAllocator allocator);

/// Frees what it is given with AlignedFree, for the owners below.
struct AlignedDeleter {
    void operator()(void* pointer) const { AlignedFree(pointer); }
};

/// An array in a block from AllocRetry, freed by its destructor; elements are of plain types and not cleared.
template <class Element>
using AlignedArray = std::unique_ptr<Element[], AlignedDeleter>;

/// A block of 8-bit samples.
using SampleBlock = AlignedArray<uint8_t>;

/// count  elements; 0 gives an empty owner. Waits for memory.
template <class Element>
AlignedArray<Element> MakeAlignedArray(size_t count) {
    return AlignedArray<Element>(static_cast<Element*>(AllocRetry(count * sizeof(Element))));
}

/// What `make` gives, tried again by the same policy while it throws std::bad_alloc: for code that allocates in the
/// language's own way. An attempt that fails has to leave nothing behind.
template <class Make>
auto WaitForMemory(Make make) {
    constexpr size_t unknownSize = 0;
    for (MemoryShortage shortage(unknownSize);;) {
        try {
            return make();
        } catch (const std::bad_alloc&) {
            shortage.Wait();
        }
    }
}

}  // namespace clarivex
