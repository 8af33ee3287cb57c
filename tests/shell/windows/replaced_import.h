// Puts a function of the test's in the place of one that a loaded module imports, so that the system seems to fail or
// to be another.
#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "platform/win32.h"

namespace clarivex {

inline const IMAGE_OPTIONAL_HEADER& HeaderOf(HMODULE module) {
    const auto* base = reinterpret_cast<const uint8_t*>(module);
    const auto offset = reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew;
    return reinterpret_cast<const IMAGE_NT_HEADERS*>(base + offset)->OptionalHeader;
}

/// From its construction to its destruction, for all calls of one module. One at a time for an import.
///
/// replacement  of the function's type and calling convention
class ReplacedImport {
public:
    template <class Function>
    ReplacedImport(HMODULE module, const char* library, const char* name, Function* replacement)
        : slot(SlotOf(module, GetProcAddress(GetModuleHandleA(library), name))), original(*slot) {
        Put(reinterpret_cast<uintptr_t>(replacement));
    }
    ~ReplacedImport() { Put(original); }
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;

private:
    static uintptr_t* SlotOf(HMODULE module, FARPROC imported) {
        const IMAGE_DATA_DIRECTORY& table = HeaderOf(module).DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
        auto* slot = reinterpret_cast<uintptr_t*>(reinterpret_cast<uint8_t*>(module) + table.VirtualAddress);
        uintptr_t* const end = slot + table.Size / sizeof *slot;
        slot = std::find(slot, end, reinterpret_cast<uintptr_t>(imported));
        if (slot == end) throw std::runtime_error("the module does not import this function");
        return slot;
    }
    void Put(uintptr_t address) const {
        DWORD before = 0;
        VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
        *slot = address;
    }

    uintptr_t* const slot;
    const uintptr_t original;
};

}  // namespace clarivex
