// How many system handles the process has open, for tests that look for leaks.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/win32.h"

namespace clarivex {

/// Counted in the system's table of all handles: not every system answers the question for one process.
inline int64_t OpenHandles() {
    struct HandleEntry {
        void* object;
        ULONG_PTR processId;
        ULONG_PTR handle;
        ULONG access;
        USHORT creator;
        USHORT type;
        ULONG attributes;
        ULONG reserved;
    };
    struct HandleTable {
        ULONG_PTR count;
        ULONG_PTR reserved;
    };
    constexpr ULONG allHandles = 64;
    constexpr LONG tooShort = static_cast<LONG>(0xC0000004U);
    using Query = LONG(WINAPI*)(ULONG kind, void* buffer, ULONG size, ULONG* needed);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));

    std::vector<uint64_t> buffer(1 << 16);
    while (query(allHandles, buffer.data(), static_cast<ULONG>(buffer.size() * sizeof buffer[0]), nullptr) ==
           tooShort) {
        buffer.resize(buffer.size() * 2);
    }
    const auto* table = reinterpret_cast<const HandleTable*>(buffer.data());
    const auto* entries = reinterpret_cast<const HandleEntry*>(table + 1);
    return std::count_if(entries, entries + table->count,
                         [](const HandleEntry& entry) { return entry.processId == GetCurrentProcessId(); });
}

}  // namespace clarivex
