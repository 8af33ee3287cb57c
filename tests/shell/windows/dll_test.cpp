// The DLL as a host loads it: its doors, an object out of it, a frame, and the way out.
#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {
namespace {

struct LibraryFreer {
    void operator()(HMODULE library) const { FreeLibrary(library); }
};

class PluginDll : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(nullptr, library) << "WMP_CVX.dll does not stand beside this program"; }

    template <class Function>
    Function Export(const char* name) {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.get(), name)));
    }
    HRESULT CanUnload() { return Export<HRESULT(WINAPI*)()>("DllCanUnloadNow")(); }
    HRESULT ClassObject(REFCLSID classId, void** out) {
        return Export<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>("DllGetClassObject")(classId, iidClassFactory, out);
    }

    std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryFreer> library{LoadLibraryA("WMP_CVX.dll")};
};

TEST_F(PluginDll, KnowsItsOwnClassOnly) {
    void* out = &out;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, ClassObject(clsidPropertyPage, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_POINTER, ClassObject(clsidMediaObject, nullptr));
    EXPECT_EQ(S_OK, CanUnload());
}

TEST_F(PluginDll, PlaysAFrameAndCanBeUnloadedBehindIt) {
    void* out = nullptr;
    ASSERT_EQ(S_OK, ClassObject(clsidMediaObject, &out));
    const Owned<IClassFactory> factory(static_cast<IClassFactory*>(out));
    ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, iidMediaObject, &out));
    Owned<IMediaObject> media(static_cast<IMediaObject*>(out));
    EXPECT_EQ(S_FALSE, CanUnload());

    Ask<ICVXSettings>(media.get(), iidCvxSettings)->put_CVXMode(2);
    ReceivedType offered;
    ASSERT_EQ(S_OK, media->SetInputType(0, VideoInfoType(64, 32).Type(), 0));
    ASSERT_EQ(S_OK, media->GetOutputType(0, 0, offered.Out()));
    ASSERT_EQ(S_OK, media->SetOutputType(0, &offered.Get(), 0));
    FakeBuffer in(64 * 32 * 3 / 2, 100);
    FakeBuffer enlarged(96 * 48 * 3 / 2, 7);
    DMO_OUTPUT_DATA_BUFFER output = {&enlarged, 0, 0, 0};
    ASSERT_EQ(S_OK, media->ProcessInput(0, &in, 0, 0, 0));
    EXPECT_EQ(S_OK, media->ProcessOutput(0, 1, &output, nullptr));
    EXPECT_FALSE(enlarged.HoldsOnly(7));
    EXPECT_TRUE(enlarged.GuardsIntact());

    media.reset();
    EXPECT_EQ(S_OK, CanUnload());
}

}  // namespace
}  // namespace clarivex
