// Settings in the registry: their names and formats, odd values, and the way there and back.
#include "shell/windows/settings_store.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/shell/windows/user_registry.h"
#include "tests/support/fake_buffers.h"
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

TEST_F(SettingsStore, EachValueIsReadByItself) {
    ExpectLoaded(1.0F, modeAuto, false, true, 0.0);
    registry.SetNumber(key, "Sharpness", 0x18000);
    ExpectLoaded(1.5F, modeAuto, false, true, 0.0);
    registry.SetNumber(key, "CVXMode", 7);
    registry.SetNumber(key, "AllowHD", 0x100);
    registry.SetNumber(key, "EnableLighting", 0);
    registry.SetNumber(key, "ScaleFactor", 0xC0000000U);
    ExpectLoaded(1.5F, 7, true, false, 49152.0);  // unsigned
}

TEST_F(SettingsStore, FourBytesOfAnyTypeCountAndOtherSizesDoNot) {
    const std::vector<uint8_t> bytes = {2, 0, 0, 0, 9, 9, 9, 9};
    registry.Set(key, "CVXMode", REG_BINARY, std::span(bytes).first(4));
    registry.Set(key, "AllowHD", REG_BINARY, std::span(bytes).first(1));
    registry.Set(key, "EnableLighting", REG_QWORD, bytes);
    registry.Set(key, "Sharpness", REG_BINARY, std::span(bytes).first(0));
    registry.SetText(key, "ScaleFactor", "0.5 or thereabouts");
    ExpectLoaded(1.0F, modeAlways, false, true, 0.0);
}

TEST_F(SettingsStore, SavesFourValuesAndNotTheScaleFactor) {
    PluginSettings settings;
    settings.SetSharpness(1.5F);
    settings.mode = modeNever;
    settings.allowHd = true;
    settings.enableLighting = false;
    settings.scaleFactor = 0.75;
    EXPECT_EQ(S_OK, SaveSettings(settings));
    EXPECT_EQ(0x18000U, registry.Number(key, "Sharpness"));
    ExpectLoaded(1.5F, modeNever, true, false, 0.0);
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
