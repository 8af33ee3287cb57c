// Registration: what is asked of the registrars and in which order, failures half-way, and the keys that it leaves.
#include "shell/windows/registration.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "shell/module.h"
#include "tests/shell/windows/fake_registrars.h"
#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/temporary_folder.h"

namespace clarivex {
namespace {

constexpr HRESULT classMissing = REGDB_E_CLASSNOTREG;
constexpr char mediaObjectKey[] = R"(CLSID\{5C1E8A47-93D2-4B06-B7F1-2A6D90CE3F18})";
constexpr char propertyPageKey[] = R"(CLSID\{7F40B2D9-18A6-4E5C-9C33-D1E07A5B6C42})";

struct ComApartment {
    ComApartment() { Require(CoInitialize(nullptr), "CoInitialize"); }
    ~ComApartment() { CoUninitialize(); }
};

// In a folder with a quote in its name.
class Registration : public testing::Test {
protected:
    std::wstring Path() const { return std::wstring(dll.begin(), dll.end()); }
    std::wstring QuotedPath() const {
        std::wstring quoted = Path();
        return quoted.insert(quoted.find(L'\''), 1, L'\'');
    }

    const ComApartment apartment;
    const TemporaryFolder folder{"registrar's test"};
    const std::string dll = folder.Copy("WMP_CVX.dll");
    const PluginModule module{dll};
    CallLog log;
    FakePluginRegistrar player{log};
};

// With both registrars of the test's.
class RegistrationCalls : public Registration {
protected:
    void TearDown() override {
        EXPECT_EQ(0, player.references);
        EXPECT_EQ(0, system.references);
    }

    CallLog EntryOf(const wchar_t* script) const {
        return {L"Module = " + QuotedPath(), std::wstring(L"enter REGISTRY ") + script + L" of " + Path()};
    }
    static CallLog Joined(std::initializer_list<CallLog> parts) {
        CallLog all;
        for (const CallLog& part : parts) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }

    const CallLog pluginEntered = {
        L"enter plug-in: Clarivex Plugin, Clarivex Technology [www.tesselworks.example], null"};
    FakeRegistrar system{log};
    ClassOnOffer playerClass{clsidPluginRegistrar, player};
    ClassOnOffer systemClass{clsidRegistrar, system};
};

TEST_F(RegistrationCalls, EnterThePluginAndThenEachClass) {
    EXPECT_EQ(S_OK, module.Register());
    EXPECT_EQ(Joined({pluginEntered, EntryOf(L"101"), EntryOf(L"107")}), log);
    EXPECT_EQ(1U, player.priority);
    EXPECT_TRUE(IsEqualGUID(pluginTypeDsp, player.pluginType));
    EXPECT_TRUE(IsEqualGUID(clsidMediaObject, player.classId));
    ASSERT_EQ(3U, player.types.size());
    for (const PluginMediaType& type : player.types) {
        EXPECT_TRUE(IsEqualGUID(mediaTypeVideo, type.majorType));
    }
    EXPECT_TRUE(IsEqualGUID(mediaSubtypeYv12, player.types[0].subtype));
    EXPECT_TRUE(IsEqualGUID(mediaSubtypeYuy2, player.types[1].subtype));
    EXPECT_TRUE(IsEqualGUID(mediaSubtypeIyuv, player.types[2].subtype));
}

TEST_F(RegistrationCalls, RemovalGoesThroughEverythingWhateverFails) {
    player.result = E_FAIL;
    system.failingScript = 101;
    EXPECT_EQ(S_OK, module.Unregister());
    EXPECT_EQ((CallLog{L"remove plug-in", L"Module = " + QuotedPath(), L"remove REGISTRY 101 of " + Path(),
                       L"Module = " + QuotedPath(), L"remove REGISTRY 107 of " + Path()}),
              log);
    EXPECT_TRUE(IsEqualGUID(pluginTypeDsp, player.pluginType));
    EXPECT_TRUE(IsEqualGUID(clsidMediaObject, player.classId));
}

TEST_F(RegistrationCalls, PlayersRefusalIsTheResultAndEndsIt) {
    player.result = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, module.Register());
    EXPECT_EQ(pluginEntered, log);
}

TEST_F(RegistrationCalls, RegistrarThatCannotBeMadeEndsIt) {
    systemClass.result = E_OUTOFMEMORY;
    EXPECT_EQ(E_OUTOFMEMORY, module.Register());
    EXPECT_EQ(pluginEntered, log);
    log.clear();
    EXPECT_EQ(S_OK, module.Unregister());
    EXPECT_EQ(CallLog{L"remove plug-in"}, log);

    playerClass.result = E_ACCESSDENIED;
    log.clear();
    EXPECT_EQ(E_ACCESSDENIED, module.Register());
    EXPECT_EQ(E_ACCESSDENIED, module.Unregister());
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(RegistrationCalls, FailureOfOneClassKeepsTheNextFromBeingEntered) {
    system.failingScript = 107;
    EXPECT_EQ(E_ACCESSDENIED, module.Register());
    EXPECT_EQ(Joined({pluginEntered, EntryOf(L"101"), EntryOf(L"107")}), log);
    log.clear();
    system.failingScript = 101;
    EXPECT_EQ(E_ACCESSDENIED, module.Register());
    EXPECT_EQ(Joined({pluginEntered, EntryOf(L"101")}), log);
    log.clear();
    system.replacementResult = E_OUTOFMEMORY;
    EXPECT_EQ(E_OUTOFMEMORY, module.Register());
    EXPECT_EQ(Joined({pluginEntered, {L"Module = " + QuotedPath()}}), log);
}

TEST_F(RegistrationCalls, ProgramWithoutTextsEntersNullAndItsOwnPath) {
    EXPECT_EQ(nullptr, ThisModule().instance);
    EXPECT_EQ(S_OK, RegisterServer());
    ASSERT_EQ(5U, log.size());
    EXPECT_EQ(L"enter plug-in: null, null, null", log[0]);
    const std::wstring entered = L"enter REGISTRY 101 of ";
    ASSERT_TRUE(log[2].starts_with(entered)) << std::string(log[2].begin(), log[2].end());
    wchar_t longPath[MAX_PATH] = {};
    wchar_t ownPath[MAX_PATH] = {};
    GetLongPathNameW(log[2].substr(entered.size()).c_str(), longPath, MAX_PATH);
    GetModuleFileNameW(nullptr, ownPath, MAX_PATH);
    EXPECT_EQ(0, _wcsicmp(ownPath, longPath));
}

TEST_F(RegistrationCalls, LeavesNoHandleOpen) {
    module.Register();
    const int64_t before = OpenHandles();
    for (int i = 0; i < 5; ++i) {
        module.Register();
        module.Unregister();
    }
    EXPECT_EQ(before, OpenHandles());
}

// A text of HKEY_CLASSES_ROOT.
std::optional<std::string> ClassText(const std::string& key, const char* name = nullptr) {
    char text[MAX_PATH] = {};
    DWORD size = sizeof text;
    const LSTATUS status = RegGetValueA(HKEY_CLASSES_ROOT, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
    return status == ERROR_SUCCESS ? std::optional<std::string>(text) : std::nullopt;
}

// With the system's own registrar and registry.
class RegistrationKeys : public Registration {
protected:
    static void ExpectNoKeys() {
        EXPECT_EQ(std::nullopt, ClassText(mediaObjectKey));
        EXPECT_EQ(std::nullopt, ClassText(propertyPageKey));
    }
    void ExpectServer(const std::string& key, const char* title) const {
        EXPECT_EQ(title, ClassText(key));
        EXPECT_EQ(dll, ClassText(key + R"(\InprocServer32)"));
        EXPECT_EQ("Apartment", ClassText(key + R"(\InprocServer32)", "ThreadingModel"));
    }

    // Whatever happens in between, the registry is left as it was.
    void TearDown() override {
        RegDeleteTreeA(HKEY_CLASSES_ROOT, mediaObjectKey);
        RegDeleteTreeA(HKEY_CLASSES_ROOT, propertyPageKey);
    }
};

TEST_F(RegistrationKeys, ComeAndGoAndMakeTheClassesKnown) {
    const ClassOnOffer playerClass(clsidPluginRegistrar, player);
    ExpectNoKeys();
    ASSERT_EQ(S_OK, module.Register());
    ExpectServer(mediaObjectKey, "WMP_CVX Class");
    ExpectServer(propertyPageKey, "WMP_CVX PropertyPage Class");

    void* out = nullptr;
    ASSERT_EQ(S_OK, CoCreateInstance(clsidMediaObject, nullptr, CLSCTX_INPROC_SERVER, iidMediaObject, &out));
    static_cast<IMediaObject*>(out)->Release();

    EXPECT_EQ(S_OK, module.Unregister());
    ExpectNoKeys();
}

TEST_F(RegistrationKeys, StayWhereThePlayersRegistrarIsMissing) {
    EXPECT_EQ(classMissing, module.Register());
    ExpectNoKeys();
    {
        const ClassOnOffer playerClass(clsidPluginRegistrar, player);
        ASSERT_EQ(S_OK, module.Register());
    }
    EXPECT_EQ(classMissing, module.Unregister());
    ExpectServer(mediaObjectKey, "WMP_CVX Class");
    ExpectServer(propertyPageKey, "WMP_CVX PropertyPage Class");
}

}  // namespace
}  // namespace clarivex
