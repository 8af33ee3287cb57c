// Makes the plug-in's classes for a host, and says whether any of it is still in use.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// The class factory of a class of class_ids.h; made with the first call and kept for as long as the module is loaded.
///
/// riid    IUnknown or IClassFactory
/// result  E_POINTER for a null `object`, CLASS_E_CLASSNOTAVAILABLE for an unknown class, E_NOINTERFACE. `*object` is
///         null on failure.
HRESULT GetClassObject(REFCLSID classId, REFIID riid, void** object);

/// S_OK when no object lives and no class factory is locked, else S_FALSE.
HRESULT CanUnloadNow();

}  // namespace clarivex
