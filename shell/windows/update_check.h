// Starts the external updater when its time has come. The updater decides what to do and sets the next time; this module
// talks to no server.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/win32.h"

namespace clarivex {

/// Starts "twupdate.exe" beside `module`, with the product code as its whole command line, unless an updater runs
/// already, the product code is empty, or the time of the next check, which the registry keeps for each product, is
/// still to come. Every failure ends the check silently; it repeats with the next call.
void UpdateCheck(HMODULE module, std::string_view productCode);

/// Whether the updater is to be started.
///
/// secondsSince1970  now
/// nextCheckHours    whole hours since 1970 as a signed number; 0 when nobody has set a time
bool UpdateIsDue(int64_t secondsSince1970, uint32_t nextCheckHours);

/// The updater's path in the folder of a module; empty for a path that names no folder.
std::string UpdaterPath(std::string_view modulePath);

}  // namespace clarivex
