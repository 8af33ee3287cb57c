// The doors of the DLL: what the system calls when it loads the module, asks it for a class and wants to let it go.
#include "platform/win32.h"
#include "shell/class_factory.h"
#include "shell/module.h"

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
