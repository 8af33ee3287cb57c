// The media object's settings, switch, pages, property bag and lock.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>
#include <tuple>
#include <utility>

#include "shell/media_object.h"
#include "shell/plugin_settings.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"

namespace clarivex {
namespace {

void ExpectSettings(TestObject& object, double scaleFactor, unsigned mode, int allowHd, int lighting, BOOL enabled) {
    double foundScaleFactor = -1.0;
    unsigned foundMode = 99;
    int foundAllowHd = 99, foundLighting = 99;
    BOOL foundEnabled = 99;
    EXPECT_EQ(S_OK, object.settings->get_ScaleFactor(&foundScaleFactor));
    EXPECT_EQ(S_OK, object.settings->get_CVXMode(&foundMode));
    EXPECT_EQ(S_OK, object.settings->get_AllowHD(&foundAllowHd));
    EXPECT_EQ(S_OK, object.settings->get_EnableLighting(&foundLighting));
    EXPECT_EQ(S_OK, object.player->GetEnable(&foundEnabled));
    EXPECT_EQ(std::tuple(scaleFactor, mode, allowHd, lighting, enabled),
              std::tuple(foundScaleFactor, foundMode, foundAllowHd, foundLighting, foundEnabled));
}

TEST(Settings, HaveStartValuesAndComeBackAsTheyWereGiven) {
    TestObject object;
    float sharpness = 0.0F;
    ExpectSettings(object, 0.0, 1, 0, 1, 1);
    EXPECT_EQ(S_OK, object.settings->get_Sharpness(&sharpness));
    EXPECT_EQ(1.0F, sharpness);
    object.settings->put_ScaleFactor(0.25);
    object.settings->put_Sharpness(std::numeric_limits<float>::quiet_NaN());
    object.settings->put_CVXMode(0xFFFFFFFFU);
    object.settings->put_AllowHD(-7);
    object.settings->put_EnableLighting(0);
    object.player->SetEnable(0);
    ExpectSettings(object, 0.25, 0xFFFFFFFFU, 1, 0, 0);
    object.settings->get_Sharpness(&sharpness);
    EXPECT_TRUE(std::isnan(sharpness));
    EXPECT_EQ(E_POINTER, object.settings->get_ScaleFactor(nullptr));
    EXPECT_EQ(S_OK, object.settings->get_Sharpness(nullptr));
    EXPECT_EQ(S_OK, object.settings->get_CVXMode(nullptr));
    EXPECT_EQ(S_OK, object.settings->get_AllowHD(nullptr));
    EXPECT_EQ(S_OK, object.settings->get_EnableLighting(nullptr));
    EXPECT_EQ(S_OK, object.settings->get_ScalingActive(nullptr));
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
    CAUUID pages = {};
    TestObject object;
    EXPECT_EQ(E_POINTER, object.pages->GetPages(nullptr));
    ASSERT_EQ(S_OK, object.pages->GetPages(&pages));
    EXPECT_TRUE(pages.cElems == 1 && IsEqualGUID(clsidPropertyPage, pages.pElems[0]));
    CoTaskMemFree(pages.pElems);
}

// A media object whose icon is a stream of the test's.
class ObjectWithIcon : public CVXMediaObject {
public:
    HRESULT LoadIconStream(IStream** stream) override {
        *stream = &icon;
        icon.AddRef();
        return S_OK;
    }
    static inline FakeStream icon;
};

TEST(PropertyBag, GivesTheIconWithOneReferenceInAnyCase) {
    auto* object = new PlainObject<ObjectWithIcon>;
    object->AddRef();
    for (const wchar_t* name : {L"IconStreams", L"ICONSTREAMS", L"iconstreams"}) {
        VARIANT value = {};
        ASSERT_EQ(S_OK, object->Read(name, &value, nullptr));
        EXPECT_EQ(VT_UNKNOWN, value.vt);
        EXPECT_EQ(static_cast<IUnknown*>(&ObjectWithIcon::icon), value.punkVal);
        EXPECT_EQ(2, ObjectWithIcon::icon.references);
        value.punkVal->Release();
    }
    object->Release();
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
