// Settings out of the registry and back.
#include "shell/windows/settings_store.h"

#include "shell/fixed_point.h"
#include "shell/windows/registry_key.h"

namespace clarivex {
namespace {

constexpr char sharpnessName[] = "Sharpness";
constexpr char modeName[] = "CVXMode";
constexpr char allowHdName[] = "AllowHD";
constexpr char enableLightingName[] = "EnableLighting";
constexpr char scaleFactorName[] = "ScaleFactor";
constexpr char liftSizeLimitsName[] = "LiftSizeLimits";

RegistryKey CreateUserKey(const char* path, LSTATUS& status) {
    HKEY key = nullptr;
    status = RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                             &key, nullptr);
    return RegistryKey(status == ERROR_SUCCESS ? key : nullptr);
}

void WriteNumber(const RegistryKey& key, const char* name, DWORD number, LSTATUS& firstFailure) {
    const LSTATUS status =
        RegSetValueExA(key.get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
    if (firstFailure == ERROR_SUCCESS) firstFailure = status;
}

}  // namespace

HRESULT LoadSettings(const SettingsPlace& place, PluginSettings& settings) {
    const RegistryKey key = OpenUserKey(place.key);
    if (const auto value = ReadNumber(key, sharpnessName))
        settings.SetSharpness(static_cast<float>(FromFixedPoint(value->number)));
    if (const auto value = ReadNumber(key, modeName)) settings.mode = value->number;
    if (const auto value = ReadNumber(key, allowHdName)) settings.allowHd = value->number != 0;
    if (const auto value = ReadNumber(key, enableLightingName)) settings.enableLighting = value->number != 0;
    if (const auto value = ReadNumber(key, scaleFactorName)) settings.scaleFactor = FromFixedPoint(value->number);
    if (!place.keepsSizeLimits) return S_OK;
    if (const auto value = ReadNumber(key, liftSizeLimitsName)) settings.liftSizeLimits = value->number != 0;
    return S_OK;
}

HRESULT SaveSettings(const SettingsPlace& place, const PluginSettings& settings) {
    LSTATUS status = ERROR_SUCCESS;
    const RegistryKey key = CreateUserKey(place.key, status);
    if (key == nullptr) return HRESULT_FROM_WIN32(static_cast<unsigned long>(status));
    WriteNumber(key, sharpnessName, ToFixedPoint(static_cast<double>(settings.Sharpness())), status);
    WriteNumber(key, modeName, settings.mode, status);
    WriteNumber(key, enableLightingName, settings.enableLighting ? 1 : 0, status);
    WriteNumber(key, allowHdName, settings.allowHd ? 1 : 0, status);
    return HRESULT_FROM_WIN32(static_cast<unsigned long>(status));
}

}  // namespace clarivex
