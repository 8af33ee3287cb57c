// The two registrars as objects of the test's that note what is asked of them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/windows/registrars.h"
#include "tests/support/counted_fake.h"

namespace clarivex {

using CallLog = std::vector<std::wstring>;

inline std::wstring TextOrNull(const OLECHAR* text) { return text != nullptr ? text : L"null"; }

class FakePluginRegistrar final : public CountedFake<IWMPMediaPluginRegistrar> {
public:
    explicit FakePluginRegistrar(CallLog& callLog) : CountedFake(iidPluginRegistrar), log(callLog) {}

    HRESULT result = S_OK;

    HRESULT STDMETHODCALLTYPE WMPRegisterPlayerPlugin(BSTR name, BSTR description, BSTR uninstall, DWORD priority,
                                                      GUID type, CLSID id, UINT typeCount, void* types) override {
        log.push_back(L"enter" + Plugin(type, id) + L": " + TextOrNull(name) + L", " + TextOrNull(description) + L", " +
                      TextOrNull(uninstall) + L", priority " + std::to_wstring(priority) + L", for");
        for (const PluginMediaType& each : std::span(static_cast<const PluginMediaType*>(types), typeCount)) {
            const auto* letters = reinterpret_cast<const char*>(&each.subtype.Data1);
            log.back() += L' ' + std::wstring(letters, letters + 4) +
                          (IsEqualGUID(each.majorType, mediaTypeVideo) ? L"" : L" that is no video");
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE WMPUnRegisterPlayerPlugin(GUID type, CLSID id) override {
        log.push_back(L"remove" + Plugin(type, id));
        return result;
    }

private:
    static std::wstring Plugin(const GUID& type, const GUID& id) {
        return IsEqualGUID(type, pluginTypeDsp) && IsEqualGUID(id, clsidMediaObject) ? L" plug-in" : L" a stranger";
    }
    CallLog& log;
};

/// Knows the calls that a module makes for itself; the others fail.
class FakeRegistrar final : public CountedFake<IRegistrar> {
public:
    explicit FakeRegistrar(CallLog& callLog) : CountedFake(iidRegistrar), log(callLog) {}

    HRESULT replacementResult = S_OK;
    UINT failingScript = 0;  ///< E_ACCESSDENIED for this one

    HRESULT STDMETHODCALLTYPE AddReplacement(LPCOLESTR replaced, LPCOLESTR item) override {
        log.push_back(std::wstring(replaced) + L" = " + item);
        return replacementResult;
    }
    HRESULT STDMETHODCALLTYPE ResourceRegister(LPCOLESTR file, UINT id, LPCOLESTR type) override {
        return Note(L"enter ", file, id, type);
    }
    HRESULT STDMETHODCALLTYPE ResourceUnregister(LPCOLESTR file, UINT id, LPCOLESTR type) override {
        return Note(L"remove ", file, id, type);
    }
    HRESULT STDMETHODCALLTYPE ClearReplacements() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ResourceRegisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ResourceUnregisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FileRegister(LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FileUnregister(LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE StringRegister(LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE StringUnregister(LPCOLESTR) override { return E_NOTIMPL; }

private:
    HRESULT Note(const wchar_t* what, LPCOLESTR file, UINT id, LPCOLESTR type) {
        log.push_back(what + std::wstring(type) + L" " + std::to_wstring(id) + L" of " + file);
        return id == failingScript ? E_ACCESSDENIED : S_OK;
    }

    CallLog& log;
};

/// Gives its maker one object that is there already.
class FakeFactory final : public CountedFake<IClassFactory> {
public:
    explicit FakeFactory(IUnknown& offered) : CountedFake(iidClassFactory), object(offered) {}

    HRESULT result = S_OK;  ///< anything else is what making the object gives

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** out) override {
        *out = nullptr;
        return result == S_OK ? object.QueryInterface(iid, out) : result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    IUnknown& object;
};

}  // namespace clarivex
