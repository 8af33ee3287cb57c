// The plug-in is a Windows library: nothing can be loaded here, and callers are told so.
#include "platform/library.h"

namespace clarivex {

bool CanLoadLibraries() { return false; }

void* LoadLibraryFile(const std::string&, std::string& problem) {
    problem = "only the Windows program loads plug-in libraries";
    return nullptr;
}

void* FindLibraryFunction(void*, const char*) { return nullptr; }

void CloseLibrary(void*) {}

}  // namespace clarivex
