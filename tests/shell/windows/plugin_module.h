// The plug-in's DLL as a host loads it, with its doors.
#pragma once

#include <memory>
#include <string>
#include <type_traits>

#include "platform/guids.h"
#include "platform/win32.h"
#include "tests/support/test_object.h"

namespace clarivex {

/// A loaded DLL; what was made by it must be gone before it is.
class PluginModule {
public:
    explicit PluginModule(const std::string& path = "WMP_CVX.dll") : library(LoadLibraryA(path.c_str())) {
        if (library == nullptr) throw std::runtime_error(path + " cannot be loaded");
    }

    HMODULE Handle() const { return library.get(); }

    HRESULT CanUnload() const { return Call("DllCanUnloadNow"); }
    HRESULT Register() const { return Call("DllRegisterServer"); }
    HRESULT Unregister() const { return Call("DllUnregisterServer"); }

    Owned<IClassFactory> Factory(REFCLSID classId = clsidMediaObject) const {
        void* out = nullptr;
        const auto get = Export<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>("DllGetClassObject");
        Require(get(classId, iidClassFactory, &out), "no class factory");
        return Owned<IClassFactory>(static_cast<IClassFactory*>(out));
    }

    template <class Interface>
    Owned<Interface> Make(REFIID iid, IUnknown* outer = nullptr) const {
        void* out = nullptr;
        Require(Factory()->CreateInstance(outer, iid, &out), "no media object");
        return Owned<Interface>(static_cast<Interface*>(out));
    }

private:
    struct Freer {
        void operator()(HMODULE handle) const { FreeLibrary(handle); }
    };

    template <class Function>
    Function Export(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.get(), name)));
    }
    HRESULT Call(const char* name) const { return Export<HRESULT(WINAPI*)()>(name)(); }

    std::unique_ptr<std::remove_pointer_t<HMODULE>, Freer> library;
};

}  // namespace clarivex
