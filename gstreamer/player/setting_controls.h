// What keys do to settings.
#pragma once

#include <optional>
#include <string>

#include "play/keys.h"
#include "play/play_settings.h"

namespace clarivex {

/// Changes the setting that the control is for, and says in words how it is now. None for a control of another kind, which
/// changes nothing.
std::optional<std::string> ChangeSetting(Control control, PlaySettings& settings);

/// "enhanced, sharpness 1.0, lighting, noise, split at 50 %".
std::string LookText(const Look& look);

}  // namespace clarivex
