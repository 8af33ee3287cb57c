// The property page as its host sees it. What happens inside its dialog is in property_page_dialog.cpp.
#include "shell/windows/property_page.h"

#include <commctrl.h>

#include <iterator>
#include <string_view>
#include <utility>

#include "platform/guids.h"
#include "shell/module.h"
#include "shell/windows/dialog_size.h"
#include "shell/windows/resource_ids.h"

namespace clarivex {
namespace {

HINSTANCE Resources() { return ThisModule().instance; }

bool IsBetween(UINT message, UINT first, UINT last) { return message >= first && message <= last; }

/// Lies in the module; empty when it has no such text.
std::wstring_view TextOf(UINT id) {
    const wchar_t* text = nullptr;
    const int length = LoadStringW(Resources(), id, reinterpret_cast<LPWSTR>(&text), 0);
    return {text, length > 0 ? static_cast<size_t>(length) : 0};
}

/// In memory that the caller of an interface method frees; null when memory is short.
LPOLESTR CopyForCaller(std::wstring_view text) {
    auto* copy = static_cast<LPOLESTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
    if (copy != nullptr) {
        text.copy(copy, text.size());
        copy[text.size()] = L'\0';
    }
    return copy;
}

template <const SettingsPlace& kept>
class PageOf : public CVXPropertyPage {
protected:
    PageOf() : CVXPropertyPage(kept) {}
};

/// Track bars are a class of their own library, which a host need not have asked for.
void RegisterTrackBars() {
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
}

}  // namespace

std::span<const InterfaceEntry<CVXPropertyPage>> CVXPropertyPage::Interfaces() {
    static constexpr InterfaceEntry<CVXPropertyPage> interfaces[] = {
        EntryFor<CVXPropertyPage, IPropertyPage>(iidPropertyPage),
    };
    return interfaces;
}

CVXPropertyPage::~CVXPropertyPage() {
    if (window != nullptr) DestroyWindow(window);
}

HRESULT CVXPropertyPage::SetPageSite(IPropertyPageSite* pageSite) {
    if (pageSite != nullptr && site != nullptr) return E_UNEXPECTED;
    site = ReferenceTo(pageSite);
    return S_OK;
}

HRESULT CVXPropertyPage::Activate(HWND parent, LPCRECT rect, BOOL) {
    if (rect == nullptr) return E_POINTER;
    if (window != nullptr) return E_UNEXPECTED;
    RegisterTrackBars();
    CreateDialogParamA(Resources(), MAKEINTRESOURCEA(CVX_DIALOG_PAGE), parent, &DialogProcedure,
                       reinterpret_cast<LPARAM>(this));
    return Move(rect);
}

HRESULT CVXPropertyPage::Deactivate() {
    if (window != nullptr) DestroyWindow(window);
    return S_OK;
}

HRESULT CVXPropertyPage::GetPageInfo(PROPPAGEINFO* info) {
    if (info == nullptr) return E_POINTER;
    *info = {};
    info->cb = sizeof *info;
    info->size = DialogSizeInPixels(Resources(), CVX_DIALOG_PAGE);
    info->pszTitle = CopyForCaller(TextOf(CVX_STRING_PAGE_TITLE));
    info->pszDocString = CopyForCaller(TextOf(CVX_STRING_PAGE_DOCUMENT));
    info->pszHelpFile = CopyForCaller(TextOf(CVX_STRING_PAGE_HELP_FILE));
    if (info->pszTitle != nullptr && info->pszDocString != nullptr && info->pszHelpFile != nullptr) return S_OK;
    CoTaskMemFree(info->pszTitle);
    CoTaskMemFree(info->pszDocString);
    CoTaskMemFree(info->pszHelpFile);
    *info = {};
    return E_OUTOFMEMORY;
}

HRESULT CVXPropertyPage::SetObjects(ULONG count, IUnknown** newObjects) {
    if (count != 0 && newObjects == nullptr) return E_POINTER;
    ComPointer<ICVXSettings> found;
    for (ULONG i = 0; i < count && found == nullptr; ++i) {
        void* answer = nullptr;
        if (newObjects[i] != nullptr && SUCCEEDED(newObjects[i]->QueryInterface(iidCvxSettings, &answer)))
            found.reset(static_cast<ICVXSettings*>(answer));
    }
    settings = std::move(found);
    return S_OK;
}

HRESULT CVXPropertyPage::Show(UINT how) {
    if (window == nullptr) return E_UNEXPECTED;
    ShowWindow(window, static_cast<int>(how));
    return S_OK;
}

HRESULT CVXPropertyPage::Move(LPCRECT rect) {
    if (rect == nullptr) return E_POINTER;
    if (window == nullptr) return E_UNEXPECTED;
    MoveWindow(window, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, TRUE);
    return S_OK;
}

HRESULT CVXPropertyPage::IsPageDirty() { return dirty ? S_OK : S_FALSE; }

HRESULT CVXPropertyPage::Help(LPCOLESTR helpFolder) {
    const std::wstring_view file = TextOf(CVX_STRING_PAGE_HELP_FILE);
    wchar_t path[2 * MAX_PATH] = {};
    const std::wstring_view folder = helpFolder != nullptr ? helpFolder : L"";
    const std::wstring_view separator = folder.empty() ? L"" : L"\\";
    if (folder.size() + separator.size() + file.size() >= std::size(path)) return E_INVALIDARG;
    wchar_t* end = path;
    for (const std::wstring_view part : {folder, separator, file}) end += part.copy(end, part.size());
    WinHelpW(window, path, HELP_CONTENTS, 0);
    return S_OK;
}

HRESULT CVXPropertyPage::TranslateAccelerator(MSG* message) {
    if (message == nullptr) return E_POINTER;
    constexpr UINT lastKey = 265;
    constexpr UINT lastMouse = 525;
    const bool isInput =
        IsBetween(message->message, WM_KEYFIRST, lastKey) || IsBetween(message->message, WM_MOUSEFIRST, lastMouse);
    return isInput && window != nullptr && IsDialogMessageA(window, message) != FALSE ? S_OK : S_FALSE;
}

HRESULT CreatePlayersPage(IUnknown* outer, REFIID iid, void** out) {
    return CreateObject<PageOf<playersSettings>>(outer, iid, out);
}

HRESULT CreateEffectsPage(IUnknown* outer, REFIID iid, void** out) {
    return CreateObject<PageOf<effectsSettings>>(outer, iid, out);
}

}  // namespace clarivex
