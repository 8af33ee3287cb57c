#include "runtime/fast_lock.h"

#include "runtime/memory.h"

namespace clarivex {
namespace {

OwnedHandle MakeWakeEvent() {
    constexpr BOOL manualReset = FALSE;
    constexpr BOOL signalled = FALSE;
    for (;;) {
        if (HANDLE event = CreateEventA(nullptr, manualReset, signalled, nullptr)) return OwnedHandle(event);
        Sleep(retryMilliseconds);  // a shortage of handles is waited out like one of memory
    }
}

}  // namespace

FastLock::FastLock() : event(MakeWakeEvent()) {}

void FastLock::WaitForTurn() { WaitForSingleObject(event.get(), INFINITE); }

void FastLock::WakeNext() { SetEvent(event.get()); }

}  // namespace clarivex
