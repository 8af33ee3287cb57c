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

    /// Of a door without parameters.
    HRESULT Call(const char* door) const { return Export<HRESULT(WINAPI*)()>(door)(); }
    HRESULT CanUnload() const { return Call("DllCanUnloadNow"); }

    Owned<IClassFactory> Factory(REFCLSID classId = clsidMediaObject) const {
        void* out = nullptr;
        const auto get = Export<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>("DllGetClassObject");
        Require(get(classId, iidClassFactory, &out), "no class factory");
        return Owned<IClassFactory>(static_cast<IClassFactory*>(out));
    }

    template <class Interface>
    Owned<Interface> Make(REFIID iid, REFCLSID classId = clsidMediaObject) const {
        void* out = nullptr;
        Require(Factory(classId)->CreateInstance(nullptr, iid, &out), "no object");
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

    std::unique_ptr<std::remove_pointer_t<HMODULE>, Freer> library;
};

}  // namespace clarivex
