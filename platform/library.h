// Loads a dynamic library and finds its functions.
#pragma once

#include <string>

namespace clarivex {

/// Whether programs of this system can load the plug-in's library at all.
bool CanLoadLibraries();

/// Loads a library. Null when that fails; `problem` then says why, in words for a person.
void* LoadLibraryFile(const std::string& path, std::string& problem);

/// The address of an exported function, null when the library has none of that name.
void* FindLibraryFunction(void* library, const char* name);

/// Gives up one successful LoadLibraryFile. Nothing of the library may be in use any more.
void CloseLibrary(void* library);

}  // namespace clarivex
