// The classes that a module gives to hosts. Each module has its own.
#pragma once

#include <span>

#include "platform/win32.h"

namespace clarivex {

struct ObjectMapEntry {
    GUID classId;
    UINT registryScript;  ///< the number of the resource that enters the class in the registry; 0 in a program
    /// Makes an object, plain or as a part of `outer`.
    HRESULT (*create)(IUnknown* outer, REFIID iid, void** out);
};

/// The same entries, in the same order, as long as the module is loaded.
std::span<const ObjectMapEntry> ObjectMap();

}  // namespace clarivex
