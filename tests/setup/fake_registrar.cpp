// A module that stands in for the player's plug-in registrar, where there is no player: the list it keeps is a registry key, of its
// own bits. It refuses when FAKE_REGISTRAR_REFUSES is its bits, 32 or 64.
#include <cstdlib>

#include "platform/guids.h"
#include "platform/windows/registrars.h"
#include "tests/support/counted_fake.h"

namespace clarivex {
namespace {

constexpr char list[] = R"(Software\Fake Player\{5C1E8A47-93D2-4B06-B7F1-2A6D90CE3F18})";

class FakeRegistrar final : public CountedFake<IWMPMediaPluginRegistrar> {
public:
    FakeRegistrar() : CountedFake(iidPluginRegistrar) {}

    HRESULT STDMETHODCALLTYPE WMPRegisterPlayerPlugin(BSTR, BSTR, BSTR, DWORD, GUID, CLSID, UINT, void*) override {
        const char* refuses = std::getenv("FAKE_REGISTRAR_REFUSES");
        if (refuses != nullptr && std::atoi(refuses) == 8 * sizeof(void*)) return E_ACCESSDENIED;
        return HRESULT_FROM_WIN32(RegSetKeyValueA(HKEY_LOCAL_MACHINE, list, "Listed", REG_SZ, "", 1));
    }
    HRESULT STDMETHODCALLTYPE WMPUnRegisterPlayerPlugin(GUID, CLSID) override {
        return HRESULT_FROM_WIN32(RegDeleteTreeA(HKEY_LOCAL_MACHINE, list));
    }
};

class Factory final : public CountedFake<IClassFactory> {
public:
    Factory() : CountedFake(iidClassFactory) {}
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** out) override {
        static FakeRegistrar registrar;
        return registrar.QueryInterface(iid, out);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace
}  // namespace clarivex

extern "C" HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID, REFIID iid, void** out) {
    static clarivex::Factory factory;
    return factory.QueryInterface(iid, out);
}
