// A lock of the system's kind with an owner.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// May be entered again by the thread that is inside; every Enter wants its Leave.
class CriticalSection {
public:
    CriticalSection() { InitializeCriticalSection(&section); }
    ~CriticalSection() { DeleteCriticalSection(&section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Enter() { EnterCriticalSection(&section); }
    void Leave() { LeaveCriticalSection(&section); }

private:
    CRITICAL_SECTION section;
};

/// Inside a critical section for a scope.
class CriticalSectionGuard {
public:
    explicit CriticalSectionGuard(CriticalSection& guarded) : section(guarded) { section.Enter(); }
    ~CriticalSectionGuard() { section.Leave(); }
    CriticalSectionGuard(const CriticalSectionGuard&) = delete;
    CriticalSectionGuard& operator=(const CriticalSectionGuard&) = delete;

private:
    CriticalSection& section;
};

}  // namespace clarivex
