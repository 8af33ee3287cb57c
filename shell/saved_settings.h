// The settings of a media object as a block of bytes, for hosts that keep the state of their filters.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "shell/plugin_settings.h"

namespace clarivex {

constexpr size_t savedSettingsBytes = 32;
using SavedSettings = std::array<uint8_t, savedSettingsBytes>;

/// Equal settings give equal bytes.
SavedSettings SaveAsBytes(const PluginSettings& settings);

/// Takes over all that was saved. False, with nothing changed, for bytes that SaveAsBytes of this or an earlier release has not
/// made: another mark or version, or unknown switches.
bool LoadFromBytes(const SavedSettings& bytes, PluginSettings& settings);

}  // namespace clarivex
