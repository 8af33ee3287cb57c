#include "runtime/fast_lock.h"

#include "runtime/memory.h"

namespace clarivex {
namespace {

OwnedHandle MakeWakeEvent() {
    constexpr BOOL manualReset = FALSE;
    constexpr BOOL signalled = FALSE;
    constexpr size_t unknownSize = 0;
    for (MemoryShortage shortage(unknownSize);;) {
        if (HANDLE event = CreateEventA(nullptr, manualReset, signalled, nullptr)) return OwnedHandle(event);
        shortage.Wait();  // a shortage of handles is one of memory
    }
}

}  // namespace

FastLock::FastLock() : event(MakeWakeEvent()) {}

void FastLock::WaitForTurn() { WaitForSingleObject(event.get(), INFINITE); }

void FastLock::WakeNext() { SetEvent(event.get()); }

}  // namespace clarivex
