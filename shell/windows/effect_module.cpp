// What makes a module a video effect for every host: the media object and its settings page, and its place in the system's list
// of video effects.
#include <algorithm>
#include <array>

#include "platform/windows/effect_list.h"
#include "shell/class_ids.h"
#include "shell/object_map.h"
#include "shell/video_effect.h"
#include "shell/windows/class_registration.h"
#include "shell/windows/property_page.h"
#include "shell/windows/registration.h"
#include "shell/windows/resource_ids.h"

namespace clarivex {
namespace {

HRESULT EnterEffect() {
    const OwnedText name = LoadText(CVX_STRING_PLUGIN_NAME);
    if (name == nullptr) return E_OUTOFMEMORY;
    std::array<DMO_PARTIAL_MEDIATYPE, effectFormats.size()> types = {};
    std::ranges::transform(effectFormats, types.begin(), [](const StreamFormat& format) {
        return DMO_PARTIAL_MEDIATYPE{mediaTypeVideo, format.subtype};
    });
    const auto count = static_cast<DWORD>(types.size());
    return DMORegister(name.get(), clsidVideoEffect, videoEffectCategory, 0, count, types.data(), count, types.data());
}

}  // namespace

std::span<const ObjectMapEntry> ObjectMap() {
    static constexpr ObjectMapEntry entries[] = {
        {clsidVideoEffect, CVX_SCRIPT_VIDEO_EFFECT, CreateObject<CVXVideoEffect>},
        {clsidVideoEffectPage, CVX_SCRIPT_VIDEO_EFFECT_PAGE, CreateEffectsPage},
    };
    return entries;
}

/// The classes first: what stands in the list can be made.
HRESULT RegisterServer() {
    const HRESULT entered = EnterClasses();
    return FAILED(entered) ? entered : EnterEffect();
}

HRESULT UnregisterServer() {
    DMOUnregister(clsidVideoEffect, videoEffectCategory);  // fails for what is not in the list
    RemoveClasses();
    return S_OK;
}

}  // namespace clarivex
