#include "runtime/memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include "runtime/diagnostics.h"
#include "tests/support/memory_count.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr size_t tooLarge = std::numeric_limits<size_t>::max();

bool IsAligned(const void* pointer, size_t alignment) { return reinterpret_cast<uintptr_t>(pointer) % alignment == 0; }

TEST(AlignedAlloc, GivesWholeBlocksAtEveryPowerOfTwoAndNoOthers) {
    for (size_t alignment = 1; alignment <= 4096; alignment *= 2) {
        for (const size_t size : {0, 1, 7, 64, 1000}) {
            void* block = AlignedAlloc(size, alignment);
            ASSERT_NE(block, nullptr);
            EXPECT_TRUE(IsAligned(block, std::max(alignment, sizeof(void*)))) << alignment;
            std::memset(block, 0xA5, size);
            AlignedFree(block);
        }
    }
    for (const size_t alignment : {0, 3, 5, 48, 65}) {
        errno = 0;
        EXPECT_EQ(AlignedAlloc(16, alignment), nullptr);
        EXPECT_EQ(errno, 22) << alignment;
    }
    EXPECT_EQ(AlignedAlloc(tooLarge - 16, 64), nullptr) << "a size that wraps";
    AlignedFree(nullptr);
}

TEST(AlignedRealloc, LeavesTheOldBlockAloneWhenItFails) {
    auto* block = static_cast<uint8_t*>(AlignedAlloc(8, 64));
    block[7] = 77;
    EXPECT_EQ(AlignedRealloc(block, 16, 24), nullptr);
    const MemoryCount memory(1);
    EXPECT_EQ(AlignedRealloc(block, 16, 64), nullptr);
    EXPECT_EQ(block[7], 77);
    AlignedFree(block);
}

TEST(RetryingAllocators, WaitUntilThereCanBeMemoryAndKeepTheBytes) {
    const MemoryCount memory(2);
    EXPECT_EQ(AllocRetry(0), nullptr);
    EXPECT_EQ(MemoryCount::Attempts(), 0);
    auto* block = static_cast<uint8_t*>(AllocRetry(4));
    EXPECT_TRUE(IsAligned(block, 64));
    EXPECT_EQ(MemoryCount::Attempts(), 3);
    std::memcpy(block, "abc", 4);
    const MemoryCount again(2);
    block = static_cast<uint8_t*>(ReallocRetry(block, 400));
    EXPECT_EQ(MemoryCount::Attempts(), 3);
    EXPECT_STREQ(reinterpret_cast<char*>(block), "abc");
    EXPECT_THROW(ReallocRetry(block, tooLarge), const char*);  // no waiting could help
    EXPECT_THROW(AllocRetry(tooLarge), const char*);
    EXPECT_EQ(ReallocRetry(block, 0), nullptr);
}

TEST(MemoryShortage, IsToldOnceAndGivenUpWhereTheProcessSaysSo) {
    static std::string told;
    const TraceSink previousSink = SetTraceSink([](const char* line) { told += line; });
    const MemoryWait previousWait = SetMemoryWait([](size_t bytes, uint32_t waitedMilliseconds) {
        told += std::to_string(bytes) + " after " + std::to_string(waitedMilliseconds) + '\n';
        return waitedMilliseconds < 2 * retryMilliseconds;
    });
    const MemoryCount memory(3);
    EXPECT_THROW(AllocRetry(777), const char*);
    EXPECT_EQ(MemoryCount::Attempts(), 3);
    int attempts = 0;
    EXPECT_EQ(WaitForMemory([&] { return ++attempts < 2 ? throw std::bad_alloc() : attempts; }), 2);
    {
        const MemoryImpatience outer, inner;
        EXPECT_THROW(WaitForMemory([&]() -> int { throw std::bad_alloc(); }), const char*);
        std::thread([&] {
            EXPECT_EQ(WaitForMemory([&] { return ++attempts < 4 ? throw std::bad_alloc() : 5; }), 5);
        }).join();
    }
    SetMemoryWait(previousWait);
    SetTraceSink(previousSink);
    EXPECT_EQ(told,
              "MemAlloc : waiting for 777 bytes\n777 after 0\n777 after 100\n777 after 200\n"
              "MemAlloc : waiting for memory\n0 after 0\nMemAlloc : waiting for memory\n0 after 0\n");
}

}  // namespace
}  // namespace clarivex
