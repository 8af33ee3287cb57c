// The doors of the DLL: what the system calls when it loads the module, asks it for a class, wants it entered in the
// registry or taken out, and wants to let it go.
#include <new>

#include "platform/win32.h"
#include "shell/class_factory.h"
#include "shell/module.h"
#include "shell/windows/registration.h"

namespace {

HRESULT WithoutExceptions(HRESULT (*work)()) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace

/// The class factories are released with the other static objects, when the system lets the module go.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        clarivex::ThisModule().instance = instance;
        clarivex::ThisModule().lockCount = 0;
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID riid, LPVOID* object) {
    return clarivex::GetClassObject(classId, riid, object);
}

STDAPI DllCanUnloadNow() { return clarivex::CanUnloadNow(); }

STDAPI DllRegisterServer() { return WithoutExceptions(clarivex::RegisterServer); }

STDAPI DllUnregisterServer() { return WithoutExceptions(clarivex::UnregisterServer); }
