// The DLL as a host loads it: its doors, objects out of it in both shapes, what it carries, a frame, and the way out.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "runtime/version.h"
#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {
namespace {

std::string TextOf(const PluginModule& module, UINT id) {
    char text[512] = {};
    const int length = LoadStringA(module.Handle(), id, text, sizeof text);
    return std::string(text, static_cast<size_t>(length));
}

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

uint32_t NumberAt(const std::vector<uint8_t>& bytes, size_t offset) {
    uint32_t number = 0;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

class PluginDll : public testing::Test {
protected:
    PluginModule module;
};

TEST_F(PluginDll, KnowsItsTwoClassesOnly) {
    void* out = &out;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, module.ClassObject(iidMediaObject, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_POINTER, module.ClassObject(clsidMediaObject, nullptr));
    EXPECT_EQ(E_NOINTERFACE, module.ClassObject(clsidPropertyPage, &out, iidPropertyPage));
    EXPECT_EQ(nullptr, out);
    EXPECT_NE(module.Factory(clsidMediaObject), module.Factory(clsidPropertyPage));
    EXPECT_EQ(module.Factory(clsidPropertyPage), module.Factory(clsidPropertyPage));
    EXPECT_EQ(S_OK, module.CanUnload());
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

TEST_F(PluginDll, ObjectOfEitherClassCanBePartOfAnother) {
    for (const GUID& classId : {clsidMediaObject, clsidPropertyPage}) {
        const GUID& own = IsEqualGUID(classId, clsidMediaObject) ? iidCvxSettings : iidPropertyPage;
        FakeOuter outer;
        const auto factory = module.Factory(classId);
        void* out = &out;
        EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(&outer, own, &out));
        EXPECT_EQ(nullptr, out);
        ASSERT_EQ(S_OK, factory->CreateInstance(&outer, iidUnknown, &out));
        Owned<IUnknown> inner(static_cast<IUnknown*>(out));
        outer.inner = inner.get();
        const auto asked = Ask<IUnknown>(inner.get(), own);
        EXPECT_EQ(2, outer.references);
        EXPECT_EQ(static_cast<IUnknown*>(&outer), Ask<IUnknown>(asked.get(), iidUnknown).get());
    }
    EXPECT_EQ(S_OK, module.CanUnload());
}

TEST_F(PluginDll, MakingAnObjectLeavesNoHandleOpen) {
    module.Make<IUnknown>(iidUnknown);  // the first one opens what stays open
    const int64_t before = OpenHandles();
    for (int i = 0; i < 10; ++i) {
        module.Make<IUnknown>(iidUnknown);
    }
    EXPECT_EQ(before, OpenHandles());
}

TEST_F(PluginDll, CarriesItsTexts) {
    EXPECT_EQ("Clarivex", TextOf(module, 100));
    EXPECT_EQ("Clarivex Plugin", TextOf(module, 102));
    EXPECT_EQ("Clarivex Technology [www.tesselworks.example]", TextOf(module, 103));
    EXPECT_EQ("Clarivex Plugin", TextOf(module, 104));
    EXPECT_EQ("Help File Name", TextOf(module, 105));
    EXPECT_EQ("Clarivex Settings", TextOf(module, 106));
    EXPECT_EQ("You must enter a scale factor between 0.0 and 1.0", TextOf(module, 109));
}

TEST_F(PluginDll, CarriesItsVersion) {
    std::vector<char> block(GetFileVersionInfoSizeA("WMP_CVX.dll", nullptr));
    ASSERT_TRUE(GetFileVersionInfoA("WMP_CVX.dll", 0, static_cast<DWORD>(block.size()), block.data()));
    const auto text = [&](const std::string& name) {
        void* value = nullptr;
        UINT length = 0;
        const std::string path = R"(\StringFileInfo\040904B0\)" + name;
        return VerQueryValueA(block.data(), path.c_str(), &value, &length) ? static_cast<char*>(value) : "missing";
    };
    EXPECT_STREQ("Clarivex WMP Plugin", text("FileDescription"));
    EXPECT_STREQ("Video Enhancement Plugin for WMP", text("Comments"));
    EXPECT_STREQ("WMP_CVX.dll", text("InternalName"));
    EXPECT_STREQ(CLARIVEX_VERSION_FULL_TEXT, text("FileVersion"));
    EXPECT_STREQ("", text("OLESelfRegister"));
}

TEST_F(PluginDll, HandsOutItsIcon) {
    const auto bag = module.Make<IPropertyBag>(iidPropertyBag);
    VARIANT value = {};
    ASSERT_EQ(S_OK, bag->Read(L"iconSTREAMS", &value, nullptr));
    ASSERT_EQ(VT_UNKNOWN, value.vt);
    const Owned<IUnknown> owner(value.punkVal);
    const std::vector<uint8_t> bytes = StreamBytes(*Ask<IStream>(owner.get(), iidStream));
    ASSERT_GT(bytes.size(), 54U);
    EXPECT_EQ('B', bytes[0]);
    EXPECT_EQ('M', bytes[1]);
    EXPECT_EQ(bytes.size(), NumberAt(bytes, 2));
    EXPECT_EQ(32U, NumberAt(bytes, 18));
    EXPECT_EQ(12U, NumberAt(bytes, 22));
    owner->AddRef();
    EXPECT_EQ(1U, owner->Release());
}

TEST_F(PluginDll, PlaysAFrameAndCanBeUnloadedBehindIt) {
    auto media = module.Make<IMediaObject>(iidMediaObject);
    EXPECT_EQ(S_FALSE, module.CanUnload());

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
    EXPECT_EQ(S_OK, module.CanUnload());
}

}  // namespace
}  // namespace clarivex
