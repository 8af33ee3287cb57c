// The sequence of an update check, and the decisions in it.
#include "shell/windows/update_check.h"

#include <ctime>

#include "runtime/owned_handle.h"
#include "shell/windows/module_path.h"
#include "shell/windows/registry_key.h"

namespace clarivex {
namespace {

constexpr char updaterMutexName[] = "TW-6B2F90A1-3C7D-4E18-A5D0-91F4C28E7B36";
constexpr char productsKeyPath[] = R"(Software\Tessel Works\Applications\)";
constexpr char nextCheckName[] = "Next Check";
constexpr DWORD longestModulePath = 1024;

/// A running updater holds the mutex.
bool UpdaterRuns() {
    HANDLE mutex = CreateMutexA(nullptr, FALSE, updaterMutexName);
    const DWORD error = GetLastError();
    const OwnedHandle closer(mutex);
    return error == ERROR_ALREADY_EXISTS;
}

uint32_t NextCheckHours(std::string_view productCode) {
    const RegistryKey key = OpenUserKey((productsKeyPath + std::string(productCode)).c_str());
    const auto value = ReadNumber(key, nextCheckName);
    return value && value->type == REG_DWORD ? value->number : 0;
}

void StartUpdater(const std::string& path, std::string commandLine) {
    STARTUPINFOA startup{};
    PROCESS_INFORMATION started{};
    CreateProcessA(path.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                   NORMAL_PRIORITY_CLASS | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup, &started);
    const OwnedHandle process(started.hProcess);
    const OwnedHandle thread(started.hThread);
}

}  // namespace

void UpdateCheck(HMODULE module, std::string_view productCode) {
    if (UpdaterRuns() || productCode.empty()) return;
    if (!UpdateIsDue(std::time(nullptr), NextCheckHours(productCode))) return;
    const std::string path = UpdaterPath(ModulePath(module, longestModulePath));
    if (!path.empty()) StartUpdater(path, std::string(productCode));
}

bool UpdateIsDue(int64_t secondsSince1970, uint32_t nextCheckHours) {
    constexpr int64_t secondsAnHour = 3600;
    return static_cast<int32_t>(secondsSince1970 / secondsAnHour) >= static_cast<int32_t>(nextCheckHours);
}

std::string UpdaterPath(std::string_view modulePath) {
    const size_t separator = modulePath.find_last_of(R"(\/)");
    if (separator == std::string_view::npos) return {};
    return std::string(modulePath.substr(0, separator)) + R"(\twupdate.exe)";
}

}  // namespace clarivex
