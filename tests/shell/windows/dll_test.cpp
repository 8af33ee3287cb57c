// The DLL as a host loads it: its doors, what it carries, and the way out.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/bitmap.h"
#include "runtime/version.h"
#include "tests/host/memory_stream.h"
#include "tests/shell/windows/plugin_module.h"

namespace clarivex {
namespace {

std::vector<uint8_t> StreamBytes(IStream& stream) {
    STATSTG state{};
    Require(stream.Stat(&state, STATFLAG_NONAME), "Stat");
    std::vector<uint8_t> bytes(static_cast<size_t>(state.cbSize.QuadPart));
    Require(stream.Seek({}, STREAM_SEEK_SET, nullptr), "Seek");
    ULONG read = 0;
    Require(stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read), "Read");
    bytes.resize(read);
    return bytes;
}

class PluginDll : public testing::Test {
protected:
    PluginModule module;
};

TEST_F(PluginDll, KnowsItsTwoClassesOnly) {
    void* out = &out;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, module.ClassObject(iidMediaObject, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_NOINTERFACE, module.ClassObject(clsidPropertyPage, &out, iidPropertyPage));
    EXPECT_NE(module.Factory(clsidMediaObject), module.Factory(clsidPropertyPage));
}

TEST_F(PluginDll, LocksAndObjectsOfBothClassesKeepItLoaded) {
    const auto factory = module.Factory(clsidPropertyPage);
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, module.CanUnload());
    void* out = nullptr;
    ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, iidPropertyPage, &out));
    Owned<IUnknown> page(static_cast<IUnknown*>(out));
    auto media = module.Make<IUnknown>(iidUnknown);
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    page.reset();
    EXPECT_EQ(S_FALSE, module.CanUnload());
    media.reset();
    EXPECT_EQ(S_OK, module.CanUnload());
}

TEST_F(PluginDll, CarriesItsTextsAndVersion) {
    for (const auto& [id, expected] :
         {std::pair(100U, "Clarivex"), std::pair(102U, "Clarivex Plugin"),
          std::pair(109U, "You must enter a scale factor between 0.0 and 1.0")}) {  // others are seen where they show
        char text[512] = {};
        LoadStringA(module.Handle(), id, text, sizeof text);
        EXPECT_STREQ(expected, text);
    }
    std::vector<char> block(GetFileVersionInfoSizeA("WMP_CVX.dll", nullptr));
    ASSERT_TRUE(GetFileVersionInfoA("WMP_CVX.dll", 0, static_cast<DWORD>(block.size()), block.data()));
    for (const auto& [name, expected] :
         {std::pair("FileDescription", "Clarivex WMP Plugin"),
          std::pair("Comments", "Video Enhancement Plugin for WMP"), std::pair("InternalName", "WMP_CVX.dll"),
          std::pair("FileVersion", CLARIVEX_VERSION_FULL_TEXT), std::pair("OLESelfRegister", "")}) {
        void* value = nullptr;
        UINT length = 0;
        const std::string path = R"(\StringFileInfo\040904B0\)" + std::string(name);
        ASSERT_TRUE(VerQueryValueA(block.data(), path.c_str(), &value, &length)) << name;
        EXPECT_STREQ(expected, static_cast<char*>(value));
    }
}

TEST_F(PluginDll, HandsOutItsIcon) {
    const auto bag = module.Make<IPropertyBag>(iidPropertyBag);
    VARIANT value = {};
    ASSERT_EQ(S_OK, bag->Read(L"iconSTREAMS", &value, nullptr));
    ASSERT_EQ(VT_UNKNOWN, value.vt);
    const Owned<IUnknown> owner(value.punkVal);
    const std::vector<uint8_t> bytes = StreamBytes(*Ask<IStream>(owner.get(), iidStream));
    MemorySource file(bytes);
    EXPECT_EQ(ReadBitmap(file).size, (PictureSize{32, 12}));
    owner->AddRef();
    EXPECT_EQ(1U, owner->Release());
}

}  // namespace
}  // namespace clarivex
