// Registration: what is asked of the registrars and in which order, failures half-way, and the keys that it leaves.
#include "shell/windows/registration.h"

#include "tests/shell/windows/com_apartment.h"
#include "tests/shell/windows/fake_registrars.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/temporary_folder.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr HRESULT classMissing = REGDB_E_CLASSNOTREG;
constexpr char mediaObjectKey[] = R"(CLSID\{5C1E8A47-93D2-4B06-B7F1-2A6D90CE3F18})";
constexpr char propertyPageKey[] = R"(CLSID\{7F40B2D9-18A6-4E5C-9C33-D1E07A5B6C42})";

// In a folder with a quote in its name.
class Registration : public testing::Test {
protected:
    std::wstring Path() const { return std::wstring(dll.begin(), dll.end()); }
    std::wstring QuotedPath() const {
        std::wstring quoted = Path();
        return quoted.insert(quoted.find(L'\''), 1, L'\'');
    }

    const ComApartment apartment{COINIT_APARTMENTTHREADED};
    const TemporaryFolder folder{"registrar's test"};
    const std::string dll = folder.Copy("WMP_CVX.dll");
    const PluginModule module{dll};
    CallLog log;
    FakePluginRegistrar player{log};
    FakeFactory playerFactory{player};
};

// With both registrars of the test's.
class RegistrationCalls : public Registration {
protected:
    void TearDown() override {
        EXPECT_EQ(1, player.references);
        EXPECT_EQ(1, system.references);
    }

    // Each class with its path in a script's quotes.
    CallLog CallsFor(const wchar_t* plugin, const wchar_t* what) const {
        const std::wstring path = L"Module = " + QuotedPath();
        return {plugin, path, what + (L" REGISTRY 101 of " + Path()), path, what + (L" REGISTRY 107 of " + Path())};
    }
    void ExpectRegister(HRESULT result, size_t calls) {
        CallLog expected = CallsFor(
            L"enter plug-in: Clarivex Plugin, Clarivex Technology [www.tesselworks.example], null, priority 1, "
            L"for YV12 YUY2 IYUV",
            L"enter");
        expected.resize(calls);
        log.clear();
        EXPECT_EQ(result, module.Register());
        EXPECT_EQ(expected, log);
    }

    FakeRegistrar system{log};
    FakeFactory systemFactory{system};
    const OfferedClass playerClass{clsidPluginRegistrar, playerFactory};
    const OfferedClass systemClass{clsidRegistrar, systemFactory};
};

// Each failure comes before the one that the line above it tells of.
TEST_F(RegistrationCalls, EnterThePluginAndThenEachClassUpToTheFirstFailure) {
    ExpectRegister(S_OK, 5);
    system.failingScript = 107;
    ExpectRegister(E_ACCESSDENIED, 5);
    system.failingScript = 101;
    ExpectRegister(E_ACCESSDENIED, 3);
    system.replacementResult = E_OUTOFMEMORY;
    ExpectRegister(E_OUTOFMEMORY, 2);
    systemFactory.result = E_UNEXPECTED;
    ExpectRegister(E_UNEXPECTED, 1);
    player.result = E_ACCESSDENIED;
    ExpectRegister(E_ACCESSDENIED, 1);
    playerFactory.result = E_FAIL;
    ExpectRegister(E_FAIL, 0);
    EXPECT_EQ(E_FAIL, module.Unregister());
    EXPECT_TRUE(log.empty());
}

TEST_F(RegistrationCalls, RemovalGoesThroughEverythingWhateverFails) {
    player.result = E_FAIL;
    system.failingScript = 101;
    EXPECT_EQ(S_OK, module.Unregister());
    EXPECT_EQ(CallsFor(L"remove plug-in", L"remove"), log);
    systemFactory.result = E_OUTOFMEMORY;
    EXPECT_EQ(S_OK, module.Unregister());
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
    void ExpectKeys(bool present) const {
        using Text = std::optional<std::string>;
        for (const auto& [key, title] :
             {std::pair{mediaObjectKey, "WMP_CVX Class"}, std::pair{propertyPageKey, "WMP_CVX PropertyPage Class"}}) {
            const std::string server = std::string(key) + R"(\InprocServer32)";
            EXPECT_EQ(present ? Text(title) : std::nullopt, ClassText(key));
            EXPECT_EQ(present ? Text(dll) : std::nullopt, ClassText(server));
            EXPECT_EQ(present ? Text("Apartment") : std::nullopt, ClassText(server, "ThreadingModel"));
        }
    }

    // Whatever happens in between, the registry is left as it was.
    void TearDown() override {
        RegDeleteTreeA(HKEY_CLASSES_ROOT, mediaObjectKey);
        RegDeleteTreeA(HKEY_CLASSES_ROOT, propertyPageKey);
    }
};

TEST_F(RegistrationKeys, ComeAndGoAndMakeTheClassesKnown) {
    EXPECT_EQ(classMissing, module.Register()) << "no player";
    ExpectKeys(false);
    {
        const OfferedClass playerClass(clsidPluginRegistrar, playerFactory);
        ASSERT_EQ(S_OK, module.Register());
    }
    void* out = nullptr;
    ASSERT_EQ(S_OK, CoCreateInstance(clsidMediaObject, nullptr, CLSCTX_INPROC_SERVER, iidMediaObject, &out));
    static_cast<IMediaObject*>(out)->Release();
    EXPECT_EQ(classMissing, module.Unregister()) << "no player";
    ExpectKeys(true);
    const OfferedClass playerClass(clsidPluginRegistrar, playerFactory);
    EXPECT_EQ(S_OK, module.Unregister());
    ExpectKeys(false);
}

}  // namespace
}  // namespace clarivex
