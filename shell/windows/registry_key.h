// An open registry key that closes itself.
#pragma once

#include <memory>
#include <optional>
#include <type_traits>

#include "platform/win32.h"

namespace clarivex {

struct RegistryKeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using RegistryKey = std::unique_ptr<std::remove_pointer_t<HKEY>, RegistryKeyCloser>;

/// Opens a key of the current user for reading; null when that fails.
RegistryKey OpenUserKey(const char* path);

/// A value of exactly four bytes, as the number that they make.
struct RegistryNumber {
    DWORD type = REG_NONE;
    DWORD number = 0;
};

/// Nothing when `key` is null, has no such value, or has one of another size.
std::optional<RegistryNumber> ReadNumber(const RegistryKey& key, const char* name);

}  // namespace clarivex
