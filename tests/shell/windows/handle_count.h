// How many system handles the process has open, for tests that look for leaks.
#pragma once

#include <cstdint>

#include "platform/win32.h"

namespace clarivex {

/// Tries every number that a handle may have: not every system answers the question for one process.
inline int32_t OpenHandles() {
    constexpr uintptr_t handleStep = 4;
    constexpr uintptr_t mostHandles = 4096;
    int32_t count = 0;
    for (uintptr_t handle = handleStep; handle <= mostHandles * handleStep; handle += handleStep) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != FALSE ? 1 : 0;
    }
    return count;
}

}  // namespace clarivex
