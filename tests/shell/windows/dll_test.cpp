// The DLL as a host loads it: its doors, what it carries, and the way out.

#include "host/bitmap.h"
#include "runtime/version.h"
#include "tests/host/memory_stream.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/replaced_import.h"
#include "tests/support/test.h"

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

TEST_F(PluginDll, LocksAndObjectsOfBothClassesKeepItLoaded) {
    const auto factory = module.Factory(clsidPropertyPage);
    EXPECT_NE(module.Factory(clsidMediaObject), factory);
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

BOOL WINAPI HasNoFeature(DWORD) { return FALSE; }

// The answer to any other reason than being loaded shows the decision and does no harm.
TEST_F(PluginDll, IsEnteredOnlyByAProcessorWithSse2) {
    if (sizeof(void*) == 8) GTEST_SKIP() << "every 64-bit processor has it";
    const auto enter = reinterpret_cast<BOOL(WINAPI*)(HMODULE, DWORD, void*)>(
        reinterpret_cast<uintptr_t>(module.Handle()) + HeaderOf(module.Handle()).AddressOfEntryPoint);
    EXPECT_TRUE(enter(module.Handle(), DLL_THREAD_ATTACH, nullptr));
    const ReplacedImport older(module.Handle(), "kernel32.dll", "IsProcessorFeaturePresent", &HasNoFeature);
    EXPECT_FALSE(enter(module.Handle(), DLL_THREAD_ATTACH, nullptr));
}

TEST_F(PluginDll, CarriesItsVersion) {
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
