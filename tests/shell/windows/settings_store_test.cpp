// Settings in the registry: their names and formats, odd values, and the way there and back.
#include "shell/windows/settings_store.h"

#include "shell/windows/registry_key.h"
#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test.h"
#include "tests/support/test_object.h"

namespace clarivex {
namespace {

constexpr char key[] = R"(Software\Tessel Works\Clarivex WMP)";

class SettingsStore : public testing::Test {
protected:
    // What loading gives over the defaults.
    static void ExpectLoaded(float sharpness, uint32_t mode, bool allowHd, bool enableLighting, double scaleFactor) {
        PluginSettings settings;
        EXPECT_EQ(S_OK, LoadSettings(settings));
        EXPECT_EQ(sharpness, settings.Sharpness());
        EXPECT_EQ(mode, settings.mode);
        EXPECT_EQ(allowHd, settings.allowHd);
        EXPECT_EQ(enableLighting, settings.enableLighting);
        EXPECT_EQ(scaleFactor, settings.scaleFactor);
    }

    UserRegistry registry;
};

// What the system hands out of a value, whatever its length, counts when it makes four bytes.
std::optional<uint32_t> FourBytesOf(const char* name) {
    std::vector<BYTE> bytes(1024);
    auto size = static_cast<DWORD>(bytes.size());
    const LSTATUS status = RegQueryValueExA(OpenUserKey(key).get(), name, nullptr, nullptr, bytes.data(), &size);
    if (status != ERROR_SUCCESS || size != 4) return std::nullopt;
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | uint32_t{bytes[3]} << 24;
}

// The same settings again after they were saved, too.
TEST_F(SettingsStore, ValuesOfAnyTypeSizeAndContentAreReadByThatRule) {
    std::minstd_rand random(1);
    ExpectLoaded(1.0F, modeAuto, false, true, 0.0);
    const int32_t handlesBefore = OpenHandles();
    for (int round = 0; round < 1000; ++round) {
        for (const char* name : {"Sharpness", "CVXMode", "AllowHD", "EnableLighting", "ScaleFactor"}) {
            std::vector<uint8_t> bytes(random() % 3 != 0 ? 4 : random() % 9 * (random() % 40));
            for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random() % 3 != 0 ? random() : 0);
            registry.Set(key, name, random() % 2 != 0 ? REG_DWORD : random() % 14, bytes);
        }
        const auto sharpness = static_cast<float>(FourBytesOf("Sharpness").value_or(0x10000) / 65536.0);
        const uint32_t mode = FourBytesOf("CVXMode").value_or(1);
        const bool allowHd = FourBytesOf("AllowHD").value_or(0) != 0;
        const bool enableLighting = FourBytesOf("EnableLighting").value_or(1) != 0;
        const double scaleFactor = FourBytesOf("ScaleFactor").value_or(0) / 65536.0;
        ExpectLoaded(sharpness, mode, allowHd, enableLighting, scaleFactor);
        PluginSettings settings;
        LoadSettings(settings);
        EXPECT_EQ(S_OK, SaveSettings(settings));
        ExpectLoaded(sharpness, mode, allowHd, enableLighting, scaleFactor);
    }
    EXPECT_EQ(handlesBefore, OpenHandles());
}

TEST_F(SettingsStore, ObjectsInBothShapesStartWithWhatWasSaved) {
    registry.SetNumber(key, "CVXMode", 2);
    registry.SetNumber(key, "ScaleFactor", 0x4000);
    FakeOuter outer;
    const auto inner = MakeObject<IUnknown>(iidUnknown, &outer);
    outer.inner = inner.get();
    const auto alone = MakeObject<IUnknown>(iidUnknown);
    for (IUnknown* object : {inner.get(), alone.get()}) {
        const auto found = Ask<ICVXSettings>(object, iidCvxSettings);
        unsigned mode = 99;
        double scaleFactor = -1.0;
        found->get_CVXMode(&mode);
        found->get_ScaleFactor(&scaleFactor);
        EXPECT_EQ(std::pair(2U, 0.25), std::pair(mode, scaleFactor));
    }
}

}  // namespace
}  // namespace clarivex
