// A lock that costs one locked addition and one plain store each way while nobody else wants it.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/win32.h"
#include "runtime/owned_handle.h"

namespace clarivex {

/// May be used from any thread; held by one at a time. No order among those who wait and no time limit.
///
/// A thread that holds the lock already is told so and is not counted again: use FastLockGuard, which keeps account.
class FastLock {
public:
    /// throws  what MemoryShortage throws
    FastLock();

    FastLock(const FastLock&) = delete;
    FastLock& operator=(const FastLock&) = delete;

    /// Waits for the lock. True: this call took it and Release is owed. False: the calling thread held it before.
    [[nodiscard]] bool Acquire() {
        // A thread finds its own id here only if it put it there, so the test needs no order with other threads.
        const DWORD self = GetCurrentThreadId();
        if (owner.load(std::memory_order_relaxed) == self) return false;
        if (waiters.fetch_add(1) != 0) WaitForTurn();
        owner.store(self, std::memory_order_relaxed);
        return true;
    }

    /// Only after an Acquire that returned true, on the same thread.
    void Release() {
        owner.store(0, std::memory_order_relaxed);
        if (waiters.fetch_sub(1) > 1) WakeNext();
    }

private:
    void WaitForTurn();
    void WakeNext();

    std::atomic<int32_t> waiters = 0;  // threads inside or waiting
    OwnedHandle event;                 // auto-reset: one SetEvent lets one waiter in
    std::atomic<uint32_t> owner = 0;   // thread id of the holder, 0 when free
};

/// Holds a FastLock for a scope. May be nested on one thread: only the outermost guard releases.
class FastLockGuard {
public:
    explicit FastLockGuard(FastLock& guarded) : lock(guarded), taken(guarded.Acquire()) {}
    ~FastLockGuard() {
        if (taken) lock.Release();
    }

    FastLockGuard(const FastLockGuard&) = delete;
    FastLockGuard& operator=(const FastLockGuard&) = delete;

private:
    FastLock& lock;
    const bool taken;
};

}  // namespace clarivex
