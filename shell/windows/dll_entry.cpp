// Where the system enters the 32-bit DLL before anything else of it runs. All that follows, down to the first static
// object, is built for processors with SSE2; this file is not.
#include "platform/win32.h"

/// The runtime's own entry: static objects, then DllMain.
extern "C" BOOL WINAPI DllMainCRTStartup(HINSTANCE instance, DWORD reason, LPVOID reserved);

/// On a processor without SSE2 the DLL does not load: ERROR_DLL_INIT_FAILED instead of an illegal instruction.
extern "C" BOOL WINAPI EnterWithSse2(HINSTANCE instance, DWORD reason, LPVOID reserved) {
    const bool hasSse2 = IsProcessorFeaturePresent(PF_XMMI64_INSTRUCTIONS_AVAILABLE) != FALSE;
    return hasSse2 ? DllMainCRTStartup(instance, reason, reserved) : FALSE;
}
