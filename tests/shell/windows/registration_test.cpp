// Registration with the system's own registrar and registry: what is asked of the player, the keys that come and go, and
// failures half-way.
#include "shell/windows/registration.h"

#include "platform/windows/registrars.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/replaced_import.h"
#include "tests/shell/windows/temporary_folder.h"
#include "tests/support/counted_fake.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr HRESULT classMissing = REGDB_E_CLASSNOTREG;
constexpr char mediaObjectKey[] = R"(CLSID\{5C1E8A47-93D2-4B06-B7F1-2A6D90CE3F18})";
constexpr char propertyPageKey[] = R"(CLSID\{7F40B2D9-18A6-4E5C-9C33-D1E07A5B6C42})";

// The player's registrar: notes what is asked of it.
class FakePluginRegistrar final : public CountedFake<IWMPMediaPluginRegistrar> {
public:
    FakePluginRegistrar() : CountedFake(iidPluginRegistrar) {}

    HRESULT result = S_OK;
    std::vector<std::wstring> log;

    HRESULT STDMETHODCALLTYPE WMPRegisterPlayerPlugin(BSTR name, BSTR description, BSTR uninstall, DWORD priority,
                                                      GUID type, CLSID id, UINT typeCount, void* types) override {
        EXPECT_EQ(nullptr, uninstall);
        std::wstring call = Plugin(type, id) + name + L", " + description + L", priority " + std::to_wstring(priority);
        for (const PluginMediaType& each : std::span(static_cast<const PluginMediaType*>(types), typeCount)) {
            EXPECT_TRUE(IsEqualGUID(each.majorType, mediaTypeVideo));
            const auto* letters = reinterpret_cast<const char*>(&each.subtype.Data1);
            call += L' ' + std::wstring(letters, letters + 4);
        }
        log.push_back(call);
        return result;
    }
    HRESULT STDMETHODCALLTYPE WMPUnRegisterPlayerPlugin(GUID type, CLSID id) override {
        log.push_back(Plugin(type, id) + L"removed");
        return result;
    }

private:
    static std::wstring Plugin(const GUID& type, const GUID& id) {
        return IsEqualGUID(type, pluginTypeDsp) && IsEqualGUID(id, clsidMediaObject) ? L"plug-in " : L"stranger ";
    }
};

FakePluginRegistrar* player = nullptr;  // null while there is no player
int scriptsBeforeFailure = -1;          // the system's registrar that is asked for behind these cannot be made

HRESULT WINAPI MakeRegistrar(REFCLSID classId, IUnknown* outer, DWORD context, REFIID iid, void** out) {
    if (IsEqualGUID(classId, clsidPluginRegistrar))
        return player != nullptr ? player->QueryInterface(iid, out) : classMissing;
    return scriptsBeforeFailure-- == 0 ? E_OUTOFMEMORY : CoCreateInstance(classId, outer, context, iid, out);
}

// A text of HKEY_CLASSES_ROOT; nothing where there is none.
std::string ClassText(const std::string& key, const char* name = nullptr) {
    char text[MAX_PATH] = {};
    DWORD size = sizeof text;
    RegGetValueA(HKEY_CLASSES_ROOT, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
    return text;
}

// What the registry says of a class: its title, its server and the server's threading model.
using ClassFacts = std::array<std::string, 3>;
ClassFacts FactsOf(const std::string& key) {
    const std::string server = key + R"(\InprocServer32)";
    return {ClassText(key), ClassText(server), ClassText(server, "ThreadingModel")};
}

// In a folder with a quote in its name.
class Registration : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(S_OK, CoInitialize(nullptr)); }
    // Whatever happens, the registry is left as it was.
    void TearDown() override {
        RegDeleteTreeA(HKEY_CLASSES_ROOT, mediaObjectKey);
        RegDeleteTreeA(HKEY_CLASSES_ROOT, propertyPageKey);
        CoUninitialize();
        EXPECT_EQ(1, registrar.references);
    }

    // What a door gives, the number of the script that fails, and which class is known afterwards.
    void Expect(HRESULT result, const char* door, int failing, bool mediaObject, bool propertyPage) {
        scriptsBeforeFailure = failing;
        EXPECT_EQ(result, module.Call(door));
        const ClassFacts media = {"WMP_CVX Class", dll, "Apartment"},
                         page = {"WMP_CVX PropertyPage Class", dll, "Apartment"};
        EXPECT_EQ(mediaObject ? media : ClassFacts{}, FactsOf(mediaObjectKey));
        EXPECT_EQ(propertyPage ? page : ClassFacts{}, FactsOf(propertyPageKey));
    }

    const TemporaryFolder folder{"registrar's test"};
    const std::string dll = folder.Copy("WMP_CVX.dll");
    const PluginModule module{dll};
    const ReplacedImport making{module.Handle(), "ole32.dll", "CoCreateInstance", &MakeRegistrar};
    FakePluginRegistrar registrar;
};

TEST_F(Registration, EntersUpToTheFirstFailureAndRemovesWhateverFails) {
    constexpr char enter[] = "DllRegisterServer", remove[] = "DllUnregisterServer";
    player = nullptr;
    Expect(classMissing, enter, -1, false, false);
    player = &registrar;
    registrar.result = E_ACCESSDENIED;
    Expect(E_ACCESSDENIED, enter, -1, false, false);
    registrar.result = S_OK;
    Expect(E_OUTOFMEMORY, enter, 0, false, false);
    Expect(E_OUTOFMEMORY, enter, 1, true, false);
    registrar.log.clear();
    Expect(S_OK, enter, -1, true, true);
    void* out = nullptr;
    ASSERT_EQ(S_OK, CoCreateInstance(clsidMediaObject, nullptr, CLSCTX_INPROC_SERVER, iidMediaObject, &out));
    static_cast<IMediaObject*>(out)->Release();
    player = nullptr;
    Expect(classMissing, remove, -1, true, true);
    player = &registrar;
    registrar.result = E_FAIL;
    Expect(S_OK, remove, 0, true, false);
    Expect(S_OK, remove, -1, false, false);
    const wchar_t entered[] =
        L"plug-in Clarivex Plugin, Clarivex Technology [www.tesselworks.example], priority 1 YV12 YUY2 IYUV";
    EXPECT_EQ((std::vector<std::wstring>{entered, L"plug-in removed", L"plug-in removed"}), registrar.log);
}

}  // namespace
}  // namespace clarivex
