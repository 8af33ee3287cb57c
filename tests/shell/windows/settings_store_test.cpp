// Settings in the registry: their names and formats, odd values, and the way there and back.
#include "shell/windows/settings_store.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"

namespace clarivex {
namespace {

constexpr char key[] = R"(Software\Tessel Works\Clarivex WMP)";

class SettingsStore : public testing::Test {
protected:
    UserRegistry registry;
    PluginSettings settings;

    void ExpectDefaults() {
        EXPECT_EQ(1.0F, settings.Sharpness());
        EXPECT_EQ(modeAuto, settings.mode);
        EXPECT_FALSE(settings.allowHd);
        EXPECT_TRUE(settings.enableLighting);
        EXPECT_EQ(0.0, settings.scaleFactor);
    }
};

TEST_F(SettingsStore, NoKeyLeavesTheDefaults) {
    EXPECT_EQ(S_OK, LoadSettings(settings));
    ExpectDefaults();
}

TEST_F(SettingsStore, EachValueIsReadByItself) {
    registry.SetNumber(key, "Sharpness", 0x18000);
    EXPECT_EQ(S_OK, LoadSettings(settings));
    EXPECT_EQ(1.5F, settings.Sharpness());
    settings.SetSharpness(1.0F);
    registry.SetNumber(key, "Sharpness", 0x10000);
    ExpectDefaults();

    registry.SetNumber(key, "CVXMode", 7);
    registry.SetNumber(key, "AllowHD", 0x100);
    registry.SetNumber(key, "EnableLighting", 0);
    registry.SetNumber(key, "ScaleFactor", 0xC0000000U);
    EXPECT_EQ(S_OK, LoadSettings(settings));
    EXPECT_EQ(7U, settings.mode);
    EXPECT_TRUE(settings.allowHd);
    EXPECT_FALSE(settings.enableLighting);
    EXPECT_EQ(49152.0, settings.scaleFactor);  // unsigned
}

TEST_F(SettingsStore, FourBytesOfAnyTypeCountAndOtherSizesDoNot) {
    const std::vector<uint8_t> bytes = {2, 0, 0, 0, 9, 9, 9, 9};
    registry.Set(key, "CVXMode", REG_BINARY, std::span(bytes).first(4));
    registry.Set(key, "AllowHD", REG_BINARY, std::span(bytes).first(1));
    registry.Set(key, "EnableLighting", REG_QWORD, bytes);
    registry.Set(key, "Sharpness", REG_BINARY, std::span(bytes).first(0));
    registry.SetText(key, "ScaleFactor", "0.5 or thereabouts");
    EXPECT_EQ(S_OK, LoadSettings(settings));
    EXPECT_EQ(modeAlways, settings.mode);
    settings.mode = modeAuto;
    ExpectDefaults();
}

TEST_F(SettingsStore, SavesFourValuesAndNotTheScaleFactor) {
    settings.SetSharpness(1.5F);
    settings.mode = modeNever;
    settings.allowHd = true;
    settings.enableLighting = false;
    settings.scaleFactor = 0.75;
    EXPECT_EQ(S_OK, SaveSettings(settings));
    EXPECT_EQ(0x18000U, registry.Number(key, "Sharpness"));
    EXPECT_EQ(0U, registry.Number(key, "CVXMode"));
    EXPECT_EQ(1U, registry.Number(key, "AllowHD"));
    EXPECT_EQ(0U, registry.Number(key, "EnableLighting"));
    EXPECT_EQ(std::nullopt, registry.Number(key, "ScaleFactor"));

    PluginSettings loaded;
    EXPECT_EQ(S_OK, LoadSettings(loaded));
    EXPECT_EQ(1.5F, loaded.Sharpness());
    EXPECT_EQ(modeNever, loaded.mode);
    EXPECT_TRUE(loaded.allowHd);
    EXPECT_FALSE(loaded.enableLighting);
    EXPECT_EQ(0.0, loaded.scaleFactor);
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
        EXPECT_EQ(2U, mode);
        EXPECT_EQ(0.25, scaleFactor);
    }
}

TEST_F(SettingsStore, LeavesNoKeyOpen) {
    EXPECT_EQ(S_OK, SaveSettings(settings));
    const int64_t before = OpenHandles();
    for (int i = 0; i < 10; ++i) {
        LoadSettings(settings);
        SaveSettings(settings);
    }
    EXPECT_EQ(before, OpenHandles());
}

}  // namespace
}  // namespace clarivex
