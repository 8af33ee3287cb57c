// Enters the module's classes in the registry and the plug-in in the player's list, and takes them out again.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// Enters the plug-in at the player's registrar, then each class of the object map in the registry, and stops at the
/// first failure, which is the result. What was entered until then stays. COM must be initialised on the thread.
HRESULT RegisterServer();

/// Takes out all of it, as far as there is any. Without the player's registrar nothing is done.
///
/// result  that of reaching the player's registrar; S_OK otherwise
HRESULT UnregisterServer();

}  // namespace clarivex
