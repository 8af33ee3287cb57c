#include "shell/memory_wait.h"

#include <atomic>

#include "platform/win32.h"
#include "runtime/memory.h"

namespace clarivex {
namespace {

std::atomic<uint32_t> patience = 0;
std::atomic<bool> gaveUp = false;
std::atomic<size_t> bytesGivenUp = 0;

bool PauseForAWhile(size_t bytes, uint32_t waitedMilliseconds) {
    if (waitedMilliseconds >= patience) {
        bytesGivenUp = bytes;
        gaveUp = true;
        return false;
    }
    Sleep(retryMilliseconds);
    return true;
}

}  // namespace

void GiveUpOnMemoryAfter(uint32_t milliseconds) {
    patience = milliseconds;
    SetMemoryWait(PauseForAWhile);
}

std::optional<size_t> MemoryGivenUp() { return gaveUp ? std::optional<size_t>(bytesGivenUp) : std::nullopt; }

}  // namespace clarivex
