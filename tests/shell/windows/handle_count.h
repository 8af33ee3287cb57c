// How many system handles the process has open, for tests that look for leaks.
#pragma once

#include <cstdint>

#include "platform/win32.h"

namespace clarivex {

/// Tries every number that a handle may have: not every system answers the question for one process.
inline int32_t OpenHandles() {
    int32_t count = 0;
    for (uintptr_t handle = 4; handle <= 0x4000; handle += 4) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != FALSE ? 1 : 0;
    }
    return count;
}

}  // namespace clarivex
