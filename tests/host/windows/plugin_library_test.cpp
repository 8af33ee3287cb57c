// The plug-in's own library, loaded as a host loads it.
#include "host/plugin_library.h"

#include "host/player.h"
#include "tests/host/error_of.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

std::string RefusalOf(const char* path) {
    return ErrorOf([=] { PluginLibrary library(path); });
}

TEST(PluginLibrary, PlaysThroughTheLibrarysOwnClassFactory) {
    const PluginLibrary library("WMP_CVX.dll");  // beside this program
    const PictureSize size{64, 48};
    Player player(library.MakeMediaObject(), {SampleFormat::yv12, size, {25, 1}, {}}, {.lighting = false});
    ASSERT_EQ(player.Negotiate(), Negotiated::playing);
    EXPECT_EQ(player.OutputSize(), (PictureSize{96, 72}));
    const PicturePlanes planes = player.Play(std::vector<uint8_t>(size.PlanarBytes(), 120));
    EXPECT_GT(*std::min_element(planes[0].begin(), planes[0].end()), 60)
        << "the whole picture is written, none is black";
}

TEST(PluginLibrary, FilesThatAreNoPluginsAreNamed) {
    EXPECT_NE(RefusalOf("no_such_plugin.dll").find("no_such_plugin.dll: cannot be loaded"), std::string::npos);
    EXPECT_EQ(RefusalOf("winmm.dll"), "winmm.dll: is not a plug-in: it exports no DllGetClassObject");
}

}  // namespace
}  // namespace clarivex
