// Runs a command line as an ordinary user would, where everybody is an administrator: without_rights "PROGRAM ARGUMENTS". The
// exit code is the program's.
#include <array>

#include "platform/win32.h"

int main(int, char** arguments) {
    std::array<BYTE, SECURITY_MAX_SID_SIZE> administrators = {};
    auto size = static_cast<DWORD>(administrators.size());
    DWORD code = 1;
    CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &size);
    SID_AND_ATTRIBUTES refused = {administrators.data(), 0};
    HANDLE own = nullptr, user = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &own);
    CreateRestrictedToken(own, DISABLE_MAX_PRIVILEGE, 1, &refused, 0, nullptr, 0, nullptr, &user);
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    CreateProcessAsUserA(user, nullptr, arguments[1], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &code);
    return static_cast<int>(code);
}
