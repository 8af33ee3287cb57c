// The updater beside the module, and the settings in the registry.
#include "shell/start_up.h"

#include <new>

#include "shell/module.h"
#include "shell/windows/settings_store.h"
#include "shell/windows/update_check.h"

namespace clarivex {

void CheckForUpdate() {
#if CVX_UPDATE_CHECK
    constexpr char productCode[] = "CVX1WMP";
    if (const HMODULE module = ThisModule().instance; module != nullptr) {
        try {
            UpdateCheck(module, productCode);
        } catch (const std::bad_alloc&) {  // a failed check stays silent; the next object's is as good
        }
    }
#endif
}

HRESULT LoadStoredSettings(const SettingsPlace& place, PluginSettings& settings) {
    return LoadSettings(place, settings);
}

}  // namespace clarivex
