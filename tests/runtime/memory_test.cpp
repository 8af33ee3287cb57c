#include "runtime/memory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace clarivex {
namespace {

// Makes memory short for the next few attempts and counts them.
class ScarceMemory {
public:
    explicit ScarceMemory(int failures) : previous(SetRawAllocator(Allocate)) {
        failuresLeft = failures;
        attempts = 0;
    }
    ~ScarceMemory() { SetRawAllocator(previous); }

    static int Attempts() { return attempts; }

private:
    static void* Allocate(size_t size) {
        ++attempts;
        return failuresLeft-- > 0 ? nullptr : std::malloc(size);
    }

    static inline int failuresLeft = 0;
    static inline int attempts = 0;
    RawAllocator previous;
};

bool IsAligned(const void* pointer, size_t alignment) { return reinterpret_cast<uintptr_t>(pointer) % alignment == 0; }

TEST(AlignedAlloc, GivesWholeBlocksAtEveryPowerOfTwo) {
    for (size_t alignment = 1; alignment <= 4096; alignment *= 2) {
        for (const size_t size : {0, 1, 7, 64, 1000}) {
            void* block = AlignedAlloc(size, alignment);
            ASSERT_NE(block, nullptr);
            EXPECT_TRUE(IsAligned(block, alignment)) << alignment;
            EXPECT_TRUE(IsAligned(block, 4)) << alignment;
            std::memset(block, 0xA5, size);
            AlignedFree(block);
        }
    }
}

TEST(AlignedAlloc, RefusesOtherAlignmentsWithErrno22) {
    for (const size_t alignment : {0, 3, 5, 48, 65}) {
        errno = 0;
        EXPECT_EQ(AlignedAlloc(16, alignment), nullptr);
        EXPECT_EQ(errno, 22) << alignment;
    }
}

TEST(AlignedAlloc, GivesNullWhenTheSizeWraps) {
    EXPECT_EQ(AlignedAlloc(std::numeric_limits<size_t>::max() - 16, 64), nullptr);
}

TEST(AlignedFree, IgnoresNull) { AlignedFree(nullptr); }

TEST(AlignedRealloc, KeepsWhatBothSizesHold) {
    for (const size_t newSize : {10, 100, 1000}) {
        auto* block = static_cast<uint8_t*>(AlignedAlloc(100, 16));
        for (int i = 0; i < 100; ++i) {
            block[i] = static_cast<uint8_t>(i);
        }
        auto* moved = static_cast<uint8_t*>(AlignedRealloc(block, newSize, 128));
        ASSERT_NE(moved, nullptr);
        EXPECT_TRUE(IsAligned(moved, 128));
        for (size_t i = 0; i < std::min<size_t>(newSize, 100); ++i) {
            ASSERT_EQ(moved[i], i);
        }
        AlignedFree(moved);
    }
}

TEST(AlignedRealloc, LeavesTheOldBlockAloneWhenItFails) {
    errno = 0;
    EXPECT_EQ(AlignedRealloc(nullptr, 8, 64), nullptr);
    EXPECT_EQ(errno, 22);
    auto* block = static_cast<uint8_t*>(AlignedAlloc(8, 64));
    block[7] = 77;
    EXPECT_EQ(AlignedRealloc(block, 16, 24), nullptr);
    {
        const ScarceMemory scarce(1);
        EXPECT_EQ(AlignedRealloc(block, 16, 64), nullptr);
    }
    EXPECT_EQ(block[7], 77);
    AlignedFree(block);
}

TEST(AllocRetry, WaitsUntilThereIsMemory) {
    const ScarceMemory scarce(2);
    void* block = AllocRetry(100);
    EXPECT_NE(block, nullptr);
    EXPECT_TRUE(IsAligned(block, 64));
    EXPECT_EQ(ScarceMemory::Attempts(), 3);
    AlignedFree(block);
}

TEST(AllocRetry, AllocatesNothingForSizeZero) {
    const ScarceMemory scarce(0);
    EXPECT_EQ(AllocRetry(0), nullptr);
    EXPECT_EQ(ScarceMemory::Attempts(), 0);
}

TEST(ReallocRetry, WaitsUntilThereIsMemoryAndKeepsTheBytes) {
    auto* block = static_cast<uint8_t*>(AllocRetry(4));
    std::memcpy(block, "abc", 4);
    const ScarceMemory scarce(2);
    block = static_cast<uint8_t*>(ReallocRetry(block, 400));
    EXPECT_EQ(ScarceMemory::Attempts(), 3);
    EXPECT_STREQ(reinterpret_cast<char*>(block), "abc");
    EXPECT_EQ(ReallocRetry(block, 0), nullptr);
}

TEST(RetryingAllocators, ThrowATextWhenNoWaitingCouldHelp) {
    constexpr size_t tooLarge = std::numeric_limits<size_t>::max();
    EXPECT_THROW(AllocRetry(tooLarge), const char*);
    void* block = AllocRetry(1);
    EXPECT_THROW(ReallocRetry(block, tooLarge), const char*);
    AlignedFree(block);
}

}  // namespace
}  // namespace clarivex
