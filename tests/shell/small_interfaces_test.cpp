// The media object's settings, switch, pages, property bag and lock.

#include "shell/plugin_settings.h"
#include "tests/support/test.h"
#include "tests/support/test_object.h"

namespace clarivex {
namespace {

// Hosts know these by heart: here they are written down once more, so that a change of a declaration is seen.
TEST(Identifiers, AreTheOnesThatHostsKnow) {
    // clang-format off
    const std::pair<GUID, GUID> known[] = {
        {clsidMediaObject,        {0x5C1E8A47, 0x93D2, 0x4B06, {0xB7, 0xF1, 0x2A, 0x6D, 0x90, 0xCE, 0x3F, 0x18}}},
        {clsidPropertyPage,       {0x7F40B2D9, 0x18A6, 0x4E5C, {0x9C, 0x33, 0xD1, 0xE0, 0x7A, 0x5B, 0x6C, 0x42}}},
        {clsidVideoEffect,        {0xFB43CBCA, 0x4D38, 0x4B73, {0xBF, 0x33, 0x3C, 0xE6, 0xE8, 0x2E, 0xD9, 0x50}}},
        {clsidVideoEffectPage,    {0x5E639B3A, 0x1BAA, 0x432E, {0xA6, 0x0A, 0x47, 0x0F, 0x9E, 0x0B, 0xDA, 0x6F}}},
        {iidCvxSettings,          {0x2C7E41D0, 0x96B3, 0x4A58, {0xB1, 0xF6, 0x83, 0xD0, 0x5A, 0x7E, 0x19, 0xC4}}},
        {iidMediaObject,          {0xD8AD0F58, 0x5494, 0x4102, {0x97, 0xC5, 0xEC, 0x79, 0x8E, 0x59, 0xBC, 0xF4}}},
        {iidWmpPluginEnable,      {0x5FCA444C, 0x7AD1, 0x479D, {0xA4, 0xEF, 0x40, 0x56, 0x6A, 0x53, 0x09, 0xD6}}},
        {iidSpecifyPropertyPages, {0xB196B28B, 0xBAB4, 0x101A, {0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07}}},
        {iidPropertyBag,          {0x55272A00, 0x42CB, 0x11CE, {0x81, 0x35, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}}},
        {iidUnknown,              {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}}}};
    // clang-format on
    for (const auto& [declared, expected] : known)
        EXPECT_TRUE(IsEqualGUID(declared, expected)) << std::hex << expected.Data1;
}

// As a host calls that was built without this project's declarations: by the place in an object's table.
template <class Result = HRESULT, class... Arguments>
Result Call(IUnknown* object, size_t slot, Arguments... arguments) {
    using Function = Result(STDMETHODCALLTYPE*)(IUnknown*, Arguments...);
    return (*reinterpret_cast<Function**>(object))[slot](object, arguments...);
}

/// All settings as bits and the switch, read by their places.
using Bits = std::array<uint64_t, 7>;
Bits BitsOf(const TestObject& object) {
    Bits bits = {};
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(S_OK, Call(object.settings.get(), 3 + 2 * i, &bits[i]));
    EXPECT_EQ(S_OK, Call(object.player.get(), 4, &bits[6]));
    return bits;
}

TEST(Settings, HaveStartValuesAndComeBackAsTheyWereGiven) {
    const TestObject object;
    IUnknown* settings = object.settings.get();
    EXPECT_EQ(6U, Call<ULONG>(settings, 1)) << "all interfaces of the test's object count together";
    EXPECT_EQ(5U, Call<ULONG>(settings, 2));
    EXPECT_EQ((Bits{0, 0x3F800000, 1, 0, 1, 0, 1}), BitsOf(object));
    EXPECT_EQ(S_OK, Call(settings, 4, 0.25));
    EXPECT_EQ(S_OK, Call(settings, 6, std::bit_cast<float>(0x7FC01234)));
    EXPECT_EQ(S_OK, Call(settings, 8, 0xFFFFFFFFU));
    EXPECT_EQ(S_OK, Call(settings, 10, -7));
    EXPECT_EQ((Bits{0x3FD0000000000000, 0x7FC01234, 0xFFFFFFFF, 1, 1, 0, 1}), BitsOf(object));
    EXPECT_EQ(S_OK, Call(settings, 12, 0));
    EXPECT_EQ(S_OK, Call(object.player.get(), 3, BOOL{0}));
    EXPECT_EQ((Bits{0x3FD0000000000000, 0x7FC01234, 0xFFFFFFFF, 1, 0, 0, 0}), BitsOf(object));
    EXPECT_EQ(E_POINTER, object.settings->get_ScaleFactor(nullptr));
    for (const size_t getter : {5, 7, 9, 11, 13}) EXPECT_EQ(S_OK, Call(settings, getter, static_cast<void*>(nullptr)));
    EXPECT_EQ(E_POINTER, object.player->GetEnable(nullptr));
}

TEST(Settings, SharpnessChangesWithItsBits) {
    constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
    PluginSettings settings;
    EXPECT_TRUE(settings.TakeSharpnessChange());  // the first frame takes what there is
    for (const auto& [sharpness, changes] : {std::pair(1.0F, false), std::pair(0.0F, true), std::pair(-0.0F, true),
                                             std::pair(noNumber, true), std::pair(noNumber, false)}) {
        settings.SetSharpness(sharpness);
        settings.SetSharpness(sharpness);  // leaves the change of the first call standing
        EXPECT_EQ(changes, settings.TakeSharpnessChange()) << sharpness;
    }
}

TEST(PropertyPages, NameOnePageInTheCallersMemory) {
    for (const auto& [classId, page] :
         {std::pair(clsidMediaObject, clsidPropertyPage), {clsidVideoEffect, clsidVideoEffectPage}}) {
        CAUUID pages = {};
        const TestObject object = TestObject::OfClass(classId);
        EXPECT_EQ(E_POINTER, object.pages->GetPages(nullptr));
        ASSERT_EQ(S_OK, object.pages->GetPages(&pages));
        EXPECT_TRUE(pages.cElems == 1 && IsEqualGUID(page, pages.pElems[0]));
        CoTaskMemFree(pages.pElems);
    }
}

TEST(PropertyBag, LeavesTheValueForOtherNamesAndFailures) {
    TestObject object;
    VARIANT value = {};
    value.vt = VT_I4;
    EXPECT_EQ(E_POINTER, object.bag->Read(L"IconStreams", nullptr, nullptr));
    EXPECT_EQ(static_cast<HRESULT>(0x80070006U), object.bag->Read(L"IconStreams", &value, nullptr));  // no resource
    EXPECT_EQ(S_OK, object.bag->Read(L"IconStream", &value, nullptr));
    EXPECT_EQ(S_OK, object.bag->Read(nullptr, &value, nullptr));
    EXPECT_EQ(VT_I4, value.vt);
    EXPECT_EQ(S_OK, object.bag->Write(nullptr, nullptr));
}

TEST(MediaObjectLock, KeepsOtherThreadsOutUntilTheLastLeave) {
    TestObject object;
    EXPECT_EQ(S_OK, object.media->Lock(1));
    EXPECT_EQ(S_OK, object.media->Lock(-1));
    std::atomic<bool> left = false;
    bool seenLeft = false;
    std::thread other([&] {
        object.media->Lock(1);
        seenLeft = left;
        object.media->Lock(0);
    });
    DWORD flags = 0;
    EXPECT_EQ(S_OK, object.media->GetInputStatus(0, &flags));  // the object itself does not mind
    EXPECT_EQ(S_OK, object.media->Lock(0));
    left = true;
    EXPECT_EQ(S_OK, object.media->Lock(0));
    other.join();
    EXPECT_TRUE(seenLeft);
}

}  // namespace
}  // namespace clarivex
