// The DLL as a host loads it: its doors, what it carries, and the way out.

#include "host/bitmap.h"
#include "tests/host/memory_stream.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/replaced_import.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(PluginDll, LocksAndObjectsOfBothClassesKeepItLoaded) {
    const PluginModule module;
    const auto factory = module.Factory(clsidPropertyPage);
    EXPECT_NE(module.Factory(clsidMediaObject), factory);
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_FALSE, module.CanUnload());
    auto page = module.Make<IUnknown>(iidPropertyPage, clsidPropertyPage);
    auto media = module.Make<IUnknown>(iidUnknown);
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    page.reset();
    EXPECT_EQ(S_FALSE, module.CanUnload());
    media.reset();
    EXPECT_EQ(S_OK, module.CanUnload());
}

BOOL WINAPI HasNoFeature(DWORD) { return FALSE; }

// The answer to any other reason than being loaded shows the decision and does no harm.
TEST(PluginDll, IsEnteredOnlyByAProcessorWithSse2) {
    if (sizeof(void*) == 8) GTEST_SKIP() << "every 64-bit processor has it";
    const PluginModule module;
    const auto enter = reinterpret_cast<BOOL(WINAPI*)(HMODULE, DWORD, void*)>(
        reinterpret_cast<uintptr_t>(module.Handle()) + HeaderOf(module.Handle()).AddressOfEntryPoint);
    EXPECT_TRUE(enter(module.Handle(), DLL_THREAD_ATTACH, nullptr));
    const ReplacedImport older(module.Handle(), "kernel32.dll", "IsProcessorFeaturePresent", &HasNoFeature);
    EXPECT_FALSE(enter(module.Handle(), DLL_THREAD_ATTACH, nullptr));
}

TEST(PluginDll, HandsOutItsIcon) {
    const PluginModule module;
    VARIANT value = {};
    ASSERT_EQ(S_OK, module.Make<IPropertyBag>(iidPropertyBag)->Read(L"iconSTREAMS", &value, nullptr));
    ASSERT_EQ(VT_UNKNOWN, value.vt);
    std::vector<uint8_t> bytes(1 << 16);
    ULONG read = 0;
    Ask<IStream>(value.punkVal, iidStream)->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read);
    bytes.resize(read);
    MemorySource file(bytes);
    EXPECT_EQ(ReadBitmap(file).size, (PictureSize{32, 12}));
    EXPECT_EQ(0U, value.punkVal->Release()) << "the caller's reference is the only one";
}

}  // namespace
}  // namespace clarivex
