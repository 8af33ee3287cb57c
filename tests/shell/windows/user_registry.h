// The current user's registry for a test: a real place of its own, so that nobody's settings are touched.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "platform/win32.h"
#include "tests/support/test_object.h"

namespace clarivex {

/// While it lives, HKEY_CURRENT_USER of this process is an empty key.
class UserRegistry {
public:
    UserRegistry() {
        RegDeleteTreeA(HKEY_CURRENT_USER, place);
        Check(RegCreateKeyA(HKEY_CURRENT_USER, place, &root));
        Check(RegOverridePredefKey(HKEY_CURRENT_USER, root));
    }
    ~UserRegistry() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegCloseKey(root);
        RegDeleteTreeA(HKEY_CURRENT_USER, place);
    }
    UserRegistry(const UserRegistry&) = delete;
    UserRegistry& operator=(const UserRegistry&) = delete;

    void Set(const char* key, const char* name, DWORD type, std::span<const uint8_t> bytes) const {
        Check(RegSetKeyValueA(root, key, name, type, bytes.data(), static_cast<DWORD>(bytes.size())));
    }
    void SetNumber(const char* key, const char* name, uint32_t number) const {
        Set(key, name, REG_DWORD, {reinterpret_cast<const uint8_t*>(&number), sizeof number});
    }

    /// A value of type REG_DWORD.
    std::optional<uint32_t> Number(const char* key, const char* name) const {
        uint32_t number = 0;
        DWORD size = sizeof number;
        const LSTATUS status = RegGetValueA(root, key, name, RRF_RT_REG_DWORD, nullptr, &number, &size);
        return status == ERROR_SUCCESS ? std::optional(number) : std::nullopt;
    }

private:
    static constexpr char place[] = R"(Software\Clarivex Tests)";

    static void Check(LSTATUS status) { Require(HRESULT_FROM_WIN32(static_cast<DWORD>(status)), "registry"); }

    HKEY root = nullptr;
};

}  // namespace clarivex
