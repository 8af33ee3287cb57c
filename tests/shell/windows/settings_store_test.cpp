// Settings in the registry: their names and formats, odd values, and the way there and back.
#include "shell/windows/settings_store.h"

#include "shell/windows/registry_key.h"
#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

// What the system hands out of a value, whatever its length, counts when it makes four bytes.
uint32_t FourBytesOf(const char* name, uint32_t otherwise) {
    std::vector<BYTE> bytes(1024);
    auto size = static_cast<DWORD>(bytes.size());
    const LSTATUS status =
        RegQueryValueExA(OpenUserKey(settingsKey).get(), name, nullptr, nullptr, bytes.data(), &size);
    if (status != ERROR_SUCCESS || size != 4) return otherwise;
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | uint32_t{bytes[3]} << 24;
}

// The same settings again after they were saved, too.
TEST(SettingsStore, ValuesOfAnyTypeSizeAndContentAreReadByThatRule) {
    const UserRegistry registry;
    std::minstd_rand random(1);
    int32_t handlesBefore = 0;
    for (int round = 0; round < 1000; ++round) {
        const SettingValues expected = {static_cast<float>(FourBytesOf("Sharpness", 0x10000) / 65536.0),
                                        FourBytesOf("CVXMode", modeAuto), FourBytesOf("AllowHD", 0) != 0,
                                        FourBytesOf("EnableLighting", 1) != 0, FourBytesOf("ScaleFactor", 0) / 65536.0};
        if (round == 1) handlesBefore = OpenHandles();  // the first one opened what stays open
        EXPECT_EQ(expected, SavedSettings());
        PluginSettings settings;
        EXPECT_EQ(S_OK, LoadSettings(playersSettings, settings));
        EXPECT_EQ(S_OK, SaveSettings(playersSettings, settings));
        EXPECT_EQ(expected, SavedSettings());
        for (const char* name : settingNames) {
            std::vector<uint8_t> bytes(random() % 3 != 0 ? 4 : random() % 9 * (random() % 40));
            for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() % 3 != 0 ? random() : 0);
            registry.Set(settingsKey, name, random() % 2 != 0 ? REG_DWORD : random() % 14, bytes);
        }
    }
    EXPECT_EQ(handlesBefore, OpenHandles());
}

TEST(SettingsStore, ObjectsStartWithWhatWasSaved) {
    const UserRegistry registry;
    registry.SetNumber(settingsKey, "CVXMode", 2);
    registry.SetNumber(R"(Software\Tessel Works\Clarivex Video)", "CVXMode", 7);
    for (const auto& [classId, expected] : {std::pair(clsidMediaObject, 2U), {clsidVideoEffect, 7U}}) {
        unsigned mode = 99;
        MakeObject<ICVXSettings>(iidCvxSettings, nullptr, classId)->get_CVXMode(&mode);
        EXPECT_EQ(expected, mode);
    }
}

}  // namespace
}  // namespace clarivex
