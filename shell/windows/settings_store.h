// The user's settings in the registry, under a key of the current user.
#pragma once

#include "platform/win32.h"
#include "shell/plugin_settings.h"
#include "shell/settings_place.h"

namespace clarivex {

/// Reads "Sharpness", "CVXMode", "AllowHD", "EnableLighting" and "ScaleFactor" into `settings`, and "LiftSizeLimits" where
/// the place keeps that.
///
/// values  four bytes of any type count as the number that they make; one that is missing or has another
///         size leaves its field as it was, as a missing key leaves all of them
/// result  S_OK always: a user without settings has the defaults
HRESULT LoadSettings(const SettingsPlace& place, PluginSettings& settings);

/// Writes "Sharpness", "CVXMode", "EnableLighting" and "AllowHD", and makes the key where there is none. "ScaleFactor"
/// and "LiftSizeLimits" are nobody's to write.
///
/// result  the first failure; values behind it are written all the same
HRESULT SaveSettings(const SettingsPlace& place, const PluginSettings& settings);

}  // namespace clarivex
