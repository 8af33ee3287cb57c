// What the module as a whole knows: its handle and whether anything of it is in use.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/win32.h"

namespace clarivex {

/// One per process; lockCount may be changed from any thread.
struct ModuleState {
    HMODULE instance = nullptr;          ///< the module whose resources are read; set when it is loaded
    std::atomic<int32_t> lockCount = 0;  ///< living objects and locks of class factories
};

ModuleState& ThisModule();

/// Keeps the module loaded for as long as an object lives.
class ModuleLock {
public:
    ModuleLock() { ThisModule().lockCount.fetch_add(1); }
    ~ModuleLock() { ThisModule().lockCount.fetch_sub(1); }
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;
};

}  // namespace clarivex
