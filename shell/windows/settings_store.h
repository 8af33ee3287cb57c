// The user's settings in the registry, under "Software\Tessel Works\Clarivex WMP" of the current user.
#pragma once

#include "platform/win32.h"
#include "shell/plugin_settings.h"

namespace clarivex {

/// Reads "Sharpness", "CVXMode", "AllowHD", "EnableLighting" and "ScaleFactor" into `settings`.
///
/// values  four bytes of any type count as the number that they make; one that is missing or has another
///         size leaves its field as it was, as a missing key leaves all of them
/// result  S_OK always: a user without settings has the defaults
HRESULT LoadSettings(PluginSettings& settings);

/// Writes "Sharpness", "CVXMode", "EnableLighting" and "AllowHD", and makes the key where there is none. "ScaleFactor"
/// is nobody's to write.
///
/// result  the first failure; values behind it are written all the same
HRESULT SaveSettings(const PluginSettings& settings);

}  // namespace clarivex
