// Dynamic libraries of Windows.
#include "platform/library.h"

#include <system_error>

#include "platform/win32.h"

namespace clarivex {

bool CanLoadLibraries() { return true; }

void* LoadLibraryFile(const std::string& path, std::string& problem) {
    const HMODULE library = LoadLibraryA(path.c_str());
    if (!library) problem = std::system_category().message(static_cast<int>(GetLastError()));
    return library;
}

void* FindLibraryFunction(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void CloseLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

}  // namespace clarivex
