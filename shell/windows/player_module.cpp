// What makes a module the player's plug-in: the media object and its settings page, and its place in the player's list.
#include <algorithm>
#include <array>

#include "platform/windows/registrars.h"
#include "shell/class_ids.h"
#include "shell/media_object.h"
#include "shell/object_map.h"
#include "shell/windows/class_registration.h"
#include "shell/windows/property_page.h"
#include "shell/windows/registration.h"
#include "shell/windows/resource_ids.h"

namespace clarivex {
namespace {

constexpr DWORD pluginPriority = 1;

HRESULT CreatePluginRegistrar(ComPointer<IWMPMediaPluginRegistrar>& registrar) {
    return CreateInProcess(clsidPluginRegistrar, iidPluginRegistrar, registrar);
}

HRESULT EnterPlugin(IWMPMediaPluginRegistrar& registrar) {
    const OwnedText name = LoadText(CVX_STRING_PLUGIN_NAME);
    const OwnedText description = LoadText(CVX_STRING_PLUGIN_DESCRIPTION);
    std::array<PluginMediaType, playerFormats.size()> types = {};
    std::ranges::transform(playerFormats, types.begin(), [](const StreamFormat& format) {
        return PluginMediaType{mediaTypeVideo, format.subtype};
    });
    return registrar.WMPRegisterPlayerPlugin(name.get(), description.get(), nullptr, pluginPriority, pluginTypeDsp,
                                             clsidMediaObject, static_cast<UINT>(types.size()), types.data());
}

}  // namespace

std::span<const ObjectMapEntry> ObjectMap() {
    static constexpr ObjectMapEntry entries[] = {
        {clsidMediaObject, CVX_SCRIPT_MEDIA_OBJECT, CreateObject<CVXMediaObject>},
        {clsidPropertyPage, CVX_SCRIPT_PROPERTY_PAGE, CreatePlayersPage},
    };
    return entries;
}

/// At the player's registrar first: without that nothing is done.
HRESULT RegisterServer() {
    ComPointer<IWMPMediaPluginRegistrar> registrar;
    if (const HRESULT created = CreatePluginRegistrar(registrar); FAILED(created)) return created;
    const HRESULT entered = EnterPlugin(*registrar);
    return FAILED(entered) ? entered : EnterClasses();
}

HRESULT UnregisterServer() {
    ComPointer<IWMPMediaPluginRegistrar> registrar;
    if (const HRESULT created = CreatePluginRegistrar(registrar); FAILED(created)) return created;
    registrar->WMPUnRegisterPlayerPlugin(pluginTypeDsp, clsidMediaObject);
    RemoveClasses();
    return S_OK;
}

}  // namespace clarivex
