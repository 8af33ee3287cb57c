#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>

#include "overlay/font_engine.h"

#include "tests/support/test.h"

namespace clarivex {
namespace {

/// Whether there is a font when the system's configuration is this file; says nothing meanwhile.
bool FindsAFontWith(const std::string& configuration) {
    setenv("FONTCONFIG_FILE", configuration.c_str(), 1);
    testing::internal::CaptureStderr();
    const bool found = MakeSystemFontEngine()->MakeFont({}) != nullptr;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    unsetenv("FONTCONFIG_FILE");
    return found;
}

TEST(FreeTypeFonts, ASystemWithoutFontsOrConfigurationGivesNoneSilently) {
    const std::string empty = testing::TempDir() + "no_fonts.conf";
    std::ofstream(empty) << "<?xml version=\"1.0\"?><fontconfig></fontconfig>";
    EXPECT_FALSE(FindsAFontWith(empty));
    EXPECT_FALSE(FindsAFontWith(testing::TempDir() + "not_there.conf"));
}

}  // namespace
}  // namespace clarivex
