// Reading from the registry.
#include "shell/windows/registry_key.h"

namespace clarivex {

RegistryKey OpenUserKey(const char* path) {
    HKEY key = nullptr;
    return RegistryKey(RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) == ERROR_SUCCESS ? key : nullptr);
}

std::optional<RegistryNumber> ReadNumber(const RegistryKey& key, const char* name) {
    if (key == nullptr) return std::nullopt;
    RegistryNumber value;
    DWORD size = sizeof value.number;
    const LSTATUS status =
        RegQueryValueExA(key.get(), name, nullptr, &value.type, reinterpret_cast<BYTE*>(&value.number), &size);
    if (status != ERROR_SUCCESS || size != sizeof value.number) return std::nullopt;
    return value;
}

}  // namespace clarivex
