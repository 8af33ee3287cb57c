// The property page's dialog: what it shows, what a change in it leads to, and what Apply makes of it.
#include <iterator>

#include "shell/windows/page_ids.h"
#include "shell/windows/property_page.h"
#include "shell/windows/settings_store.h"

namespace clarivex {
namespace {

constexpr DWORD statusChanged = 3;  // there is something to apply, and it may be applied

}  // namespace

INT_PTR CALLBACK CVXPropertyPage::DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(dialog, DWLP_USER, lParam);
        reinterpret_cast<CVXPropertyPage*>(lParam)->window = dialog;
    }
    auto* page = reinterpret_cast<CVXPropertyPage*>(GetWindowLongPtrA(dialog, DWLP_USER));
    return page != nullptr && page->OnMessage(message, wParam, lParam) ? TRUE : FALSE;
}

/// Whether the message was taken.
bool CVXPropertyPage::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: InitDialog(); return false;  // the focus stays where the host has it
        case WM_HSCROLL:
        case WM_VSCROLL: OnSlider(); return true;
        case WM_COMMAND: return OnCommand(LOWORD(wParam), HIWORD(wParam));
        case WM_STYLECHANGING: return OnStyleChanging(wParam, *reinterpret_cast<STYLESTRUCT*>(lParam));
        case WM_NCDESTROY: OnDestroyed(); return false;
        default: return false;
    }
}

bool CVXPropertyPage::OnCommand(WORD control, WORD notification) {
    if (notification == BN_CLICKED && (control == CVX_PAGE_BYPASS_HD || control == CVX_PAGE_LIGHTING)) {
        RefreshTitle(false);
        touched.Note(shown, ChosenNow());
        MarkDirty();
        return true;
    }
    return notification == EN_CHANGE && control == CVX_PAGE_SCALE_FACTOR;
}

/// However a host changes the dialog's style, the tab key finds the way to its controls.
bool CVXPropertyPage::OnStyleChanging(WPARAM which, STYLESTRUCT& styles) const {
    if (static_cast<int>(which) != GWL_EXSTYLE) return false;
    styles.styleNew |= WS_EX_CONTROLPARENT;
    return true;
}

void CVXPropertyPage::OnSlider() {
    RefreshTitle(false);
    touched.Note(shown, ChosenNow());
    if (CountsAsChanged(choices, Positions())) MarkDirty();
}

/// Also when the host's window takes the dialog with it.
void CVXPropertyPage::OnDestroyed() {
    SetWindowLongPtrA(window, DWLP_USER, 0);
    window = nullptr;
}

void CVXPropertyPage::InitDialog() {
    dirty = false;
    lastShownActive = 0;  // what the dialog's own text says
    ShowScaleFactor();
    choices = settings != nullptr ? ObjectsChoices() : StoredChoices();
    const SliderPositions positions = PositionsFor(choices);
    edgeSlider.Attach(window, CVX_PAGE_EDGE_SLIDER, edgeTicks, positions.edge);
    modeSlider.Attach(window, CVX_PAGE_MODE_SLIDER, modeTicks, positions.mode);
    CheckDlgButton(window, CVX_PAGE_LIGHTING, choices.enableLighting ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(window, CVX_PAGE_BYPASS_HD, choices.bypassHd ? BST_CHECKED : BST_UNCHECKED);
    shown = ChosenNow();
    touched = {};
    RefreshTitle(false);
}

void CVXPropertyPage::ShowScaleFactor() {
    double scaleFactor = 1.0;
    if (settings == nullptr || FAILED(settings->get_ScaleFactor(&scaleFactor))) scaleFactor = StoredScaleFactor();
    SetDlgItemTextA(window, CVX_PAGE_SCALE_FACTOR, ScaleFactorText(scaleFactor).Text());
}

double CVXPropertyPage::StoredScaleFactor() const {
    PluginSettings stored;
    stored.scaleFactor = 1.0;
    LoadSettings(place, stored);
    return stored.scaleFactor;
}

PageChoices CVXPropertyPage::StoredChoices() const {
    PluginSettings stored;
    LoadSettings(place, stored);
    return ChoicesIn(stored);
}

/// What was not touched keeps the value that is saved by now.
void CVXPropertyPage::Store(const PageChoices& chosen, const TouchedChoices& what) const {
    PluginSettings stored;
    LoadSettings(place, stored);
    Merge(chosen, what, stored);
    SaveSettings(place, stored);  // a registry that cannot be written is no reason not to use the choices now
}

/// What the object does not tell stays as an object starts.
PageChoices CVXPropertyPage::ObjectsChoices() const {
    PageChoices found;
    unsigned mode = found.mode;
    int allowHd = found.bypassHd ? 0 : 1;
    int enableLighting = found.enableLighting ? 1 : 0;
    settings->get_Sharpness(&found.sharpness);
    settings->get_CVXMode(&mode);
    settings->get_AllowHD(&allowHd);
    settings->get_EnableLighting(&enableLighting);
    found.mode = mode;
    found.bypassHd = allowHd == 0;
    found.enableLighting = enableLighting != 0;
    return found;
}

void CVXPropertyPage::RefreshTitle(bool force) {
    int active = 0;
    if (settings != nullptr) settings->get_ScalingActive(&active);
    if (!force && active == lastShownActive) return;
    lastShownActive = active;
    SetDlgItemTextA(window, CVX_PAGE_STATE_GROUP, TitleFor(active != 0));
}

void CVXPropertyPage::MarkDirty() {
    if (dirty) return;
    dirty = true;
    if (const auto told = ReferenceTo(site.get()))  // it may let itself go meanwhile
        told->OnStatusChange(statusChanged);
}

HRESULT CVXPropertyPage::Apply() {
    if (window == nullptr) return E_UNEXPECTED;
    const auto self = ReferenceTo<IPropertyPage>(this);  // while a message stands the host may let the page go
    choices = ChosenNow();
    touched.Note(shown, choices);
    Store(choices, settings != nullptr ? allTouched : touched);
    shown = choices;
    touched = {};
    HandToObject(choices, ShownScaleFactor());
    RefreshTitle(true);
    dirty = false;
    return S_OK;
}

SliderPositions CVXPropertyPage::Positions() { return {edgeSlider.Position(), modeSlider.Position()}; }

PageChoices CVXPropertyPage::ChosenNow() {
    return ChoicesAt(Positions(), IsChecked(CVX_PAGE_BYPASS_HD), IsChecked(CVX_PAGE_LIGHTING));
}

bool CVXPropertyPage::IsChecked(int control) const { return IsDlgButtonChecked(window, control) == BST_CHECKED; }

double CVXPropertyPage::ShownScaleFactor() const {
    char text[512] = {};  // the largest number has 313 characters
    GetDlgItemTextA(window, CVX_PAGE_SCALE_FACTOR, text, static_cast<int>(std::size(text)));
    return ScaleFactorIn(text);
}

/// While the message stands the page may be closed and given another object.
void CVXPropertyPage::HandToObject(PageChoices chosen, double scaleFactor) const {
    const auto object = ReferenceTo(settings.get());
    if (object == nullptr) return;
    TellWhenItWorks(*object, chosen);
    object->put_ScaleFactor(scaleFactor);
    object->put_Sharpness(chosen.sharpness);
    object->put_CVXMode(chosen.mode);
    object->put_EnableLighting(chosen.enableLighting ? 1 : 0);
    object->put_AllowHD(chosen.bypassHd ? 0 : 1);
}

void CVXPropertyPage::TellWhenItWorks(ICVXSettings& object, const PageChoices& chosen) const {
    unsigned mode = chosen.mode;
    int allowHd = chosen.bypassHd ? 0 : 1;
    object.get_CVXMode(&mode);
    object.get_AllowHD(&allowHd);
    const ShortString message = ApplyMessage({mode, allowHd != 0}, chosen);
    if (message.Text()[0] != '\0') MessageBoxA(window, message.Text(), applyMessageCaption, MB_OK);
}

}  // namespace clarivex
