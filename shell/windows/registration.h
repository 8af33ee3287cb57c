// Enters a module in the system, and takes it out again. Each module has its own of these.
#pragma once

#include "platform/win32.h"

namespace clarivex {

/// Enters the module where its hosts look for it, and each class of its object map in the registry, and stops at the first
/// failure, which is the result. What was entered until then stays. COM must be initialised on the thread.
HRESULT RegisterServer();

/// Takes out all of it, as far as there is any.
///
/// result  that of reaching the place where its hosts look; S_OK otherwise
HRESULT UnregisterServer();

}  // namespace clarivex
