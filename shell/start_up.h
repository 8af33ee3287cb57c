// What the making of a media object means to the system around it.
#pragma once

#include "platform/win32.h"
#include "shell/plugin_settings.h"
#include "shell/settings_place.h"

namespace clarivex {

/// Starts the plug-in's updater if a check is due. Nothing happens where the build leaves the check out, and in a program
/// that has the object linked in, which is not what the updater renews.
void CheckForUpdate();

/// The settings that the user saved there; those without a saved value, and all of them on a system that saves none, stay as
/// they are. Gives S_OK.
HRESULT LoadStoredSettings(const SettingsPlace& place, PluginSettings& settings);

}  // namespace clarivex
