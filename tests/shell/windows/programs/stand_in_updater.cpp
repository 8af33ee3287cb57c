// Stands in for the updater: writes its command line into a file beside itself and waits until the test has seen it.
#include <cstdio>
#include <string>

#include "platform/win32.h"

int main() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    HANDLE seen = CreateEventA(nullptr, TRUE, FALSE, "ClarivexStandInUpdaterSeen");
    if (std::FILE* record = std::fopen((std::string(path) + ".txt").c_str(), "w")) {
        std::fputs(GetCommandLineA(), record);
        std::fclose(record);
    }
    WaitForSingleObject(seen, 30000);
    CloseHandle(seen);
    return 0;
}
