// There is no updater on this system, and no store of settings: a program says itself what it wants.
#include "shell/start_up.h"

namespace clarivex {

void CheckForUpdate() {}

HRESULT LoadStoredSettings(const SettingsPlace&, PluginSettings&) { return S_OK; }

}  // namespace clarivex
