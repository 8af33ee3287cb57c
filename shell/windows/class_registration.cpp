// The classes in the registry, by the system's registrar and the module's scripts.
#include "shell/windows/class_registration.h"

#include <iterator>
#include <string>

#include "platform/windows/registrars.h"
#include "shell/module.h"
#include "shell/object_map.h"
#include "shell/windows/module_path.h"

namespace clarivex {
namespace {

constexpr DWORD longestModulePath = MAX_PATH;

HRESULT LastError() { return HRESULT_FROM_WIN32(GetLastError()); }

std::wstring Widen(const std::string& text) {
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // never longer than its bytes
    wide.resize(static_cast<size_t>(
        MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

/// A program's own path is entered in its short form, where it has one.
HRESULT ShortenProgramPath(std::string& path) {
    char shortPath[longestModulePath];
    const DWORD length = GetShortPathNameA(path.c_str(), shortPath, longestModulePath);
    if (length >= longestModulePath) return E_OUTOFMEMORY;
    // A short path of 87 characters is taken for the error of that number and the long one entered in its place. Kept so
    // that registrations stay identical between releases; both paths lead to the program.
    if (length != 0 && length != ERROR_INVALID_PARAMETER) path.assign(shortPath, length);
    return S_OK;
}

HRESULT FindModulePath(std::wstring& path) {
    const HMODULE module = ThisModule().instance;
    std::string narrow = ModulePath(module, longestModulePath);
    if (narrow.empty()) return LastError();
    if (module == nullptr || module == GetModuleHandleA(nullptr)) {
        if (const HRESULT shortened = ShortenProgramPath(narrow); FAILED(shortened)) return shortened;
    }
    path = Widen(narrow);
    return S_OK;
}

/// Registry scripts stand texts between single quotes.
std::wstring DoubleQuotes(const std::wstring& text) {
    std::wstring doubled;
    for (const wchar_t letter : text) doubled.append(letter == L'\'' ? 2 : 1, letter);
    return doubled;
}

HRESULT UpdateRegistry(const ObjectMapEntry& entry, bool enter) {
    ComPointer<IRegistrar> registrar;
    if (const HRESULT created = CreateInProcess(clsidRegistrar, iidRegistrar, registrar); FAILED(created))
        return created;
    std::wstring path;
    if (const HRESULT found = FindModulePath(path); FAILED(found)) return found;
    if (const HRESULT added = registrar->AddReplacement(L"Module", DoubleQuotes(path).c_str()); FAILED(added))
        return added;
    return enter ? registrar->ResourceRegister(path.c_str(), entry.registryScript, L"REGISTRY")
                 : registrar->ResourceUnregister(path.c_str(), entry.registryScript, L"REGISTRY");
}

}  // namespace

HRESULT EnterClasses() {
    for (const ObjectMapEntry& entry : ObjectMap())
        if (const HRESULT updated = UpdateRegistry(entry, true); FAILED(updated)) return updated;
    return S_OK;
}

void RemoveClasses() {
    for (const ObjectMapEntry& entry : ObjectMap()) UpdateRegistry(entry, false);
}

OwnedText LoadText(UINT id) {
    char text[512];
    const int length = LoadStringA(ThisModule().instance, id, text, static_cast<int>(std::size(text)));
    if (length <= 0) return nullptr;
    return OwnedText(SysAllocString(Widen(std::string(text, static_cast<size_t>(length))).c_str()));
}

}  // namespace clarivex
