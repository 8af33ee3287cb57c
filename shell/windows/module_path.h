// Where a module lies on the disk.
#pragma once

#include <string>

#include "platform/win32.h"

namespace clarivex {

/// The full path of a module, in the system's narrow characters; empty when it is not below `limit` bytes or cannot be
/// had, with the reason in GetLastError.
///
/// module  null for the program itself
std::string ModulePath(HMODULE module, DWORD limit);

}  // namespace clarivex
