#include "runtime/fast_lock.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(FastLock, LetsOneThreadInAtATime) {
    constexpr int rounds = 5000;
    FastLock lock;
    int counter = 0;  // plain on purpose: only the lock orders its accesses
    std::vector<std::thread> threads(4);
    for (std::thread& thread : threads)
        thread = std::thread([&] {
            for (int round = 0; round < rounds; ++round) {
                const FastLockGuard guard(lock);
                { const FastLockGuard inner(lock); }  // leaves the lock to the outer one
                const int seen = counter;
                if (round % 64 == 0) std::this_thread::yield();
                counter = seen + 1;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 4 * rounds);
}

}  // namespace
}  // namespace clarivex
