// The current user's registry for a test: a real place of its own, so that nobody's settings are touched.
#pragma once

#include <cstdint>
#include <span>
#include <tuple>

#include "platform/win32.h"
#include "shell/windows/settings_store.h"
#include "tests/support/test_object.h"

namespace clarivex {

constexpr char settingsKey[] = R"(Software\Tessel Works\Clarivex WMP)";
constexpr const char* settingNames[] = {"Sharpness", "CVXMode", "AllowHD", "EnableLighting", "ScaleFactor"};

/// What settings come to: sharpness, mode, allowHd, enableLighting, scaleFactor.
using SettingValues = std::tuple<float, uint32_t, bool, bool, double>;

/// What is saved, over the defaults.
inline SettingValues SavedSettings() {
    PluginSettings settings;
    LoadSettings(playersSettings, settings);
    return {settings.Sharpness(), settings.mode, settings.allowHd, settings.enableLighting, settings.scaleFactor};
}

/// While it lives, HKEY_CURRENT_USER of this process is an empty key.
class UserRegistry {
public:
    UserRegistry() {
        RegDeleteTreeA(HKEY_CURRENT_USER, place);
        RegCreateKeyA(HKEY_CURRENT_USER, place, &root);
        Require(RegOverridePredefKey(HKEY_CURRENT_USER, root), "no registry of the test's own");
    }
    ~UserRegistry() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegCloseKey(root);
        RegDeleteTreeA(HKEY_CURRENT_USER, place);
    }
    UserRegistry(const UserRegistry&) = delete;
    UserRegistry& operator=(const UserRegistry&) = delete;

    void Set(const char* key, const char* name, DWORD type, std::span<const uint8_t> bytes) const {
        Require(RegSetKeyValueA(root, key, name, type, bytes.data(), static_cast<DWORD>(bytes.size())), name);
    }
    void SetNumber(const char* key, const char* name, uint32_t number) const {
        Set(key, name, REG_DWORD, {reinterpret_cast<const uint8_t*>(&number), sizeof number});
    }

private:
    static constexpr char place[] = R"(Software\Clarivex Tests)";
    HKEY root = nullptr;
};

}  // namespace clarivex
