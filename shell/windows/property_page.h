// CVXPropertyPage: the page on which a host shows the settings of one kind of media object.
#pragma once

#include <cstdint>
#include <span>

#include "platform/com_pointer.h"
#include "platform/win32.h"
#include "shell/com_object.h"
#include "shell/property_page_logic.h"
#include "shell/settings.h"
#include "shell/settings_place.h"
#include "shell/windows/slider_control.h"

namespace clarivex {

/// Shows the settings of a running media object and writes them to the registry and into the object. Without an object
/// it shows the saved settings and writes those that were touched; what nobody touched keeps its saved value. All calls
/// come from the user interface's thread. Comes in the two shapes of com_object.h. No exception leaves a method.
class CVXPropertyPage : public IPropertyPage {
public:
    static std::span<const InterfaceEntry<CVXPropertyPage>> Interfaces();

    CVXPropertyPage(const CVXPropertyPage&) = delete;
    CVXPropertyPage& operator=(const CVXPropertyPage&) = delete;
    virtual ~CVXPropertyPage();

    /// E_UNEXPECTED for a second site; null lets the present one go.
    HRESULT STDMETHODCALLTYPE SetPageSite(IPropertyPageSite* pageSite) override;

    /// Opens the dialog, clean and not yet shown. E_POINTER for a null `rect`; E_UNEXPECTED when it is open already or
    /// cannot be made.
    HRESULT STDMETHODCALLTYPE Activate(HWND parent, LPCRECT rect, BOOL modal) override;
    HRESULT STDMETHODCALLTYPE Deactivate() override;

    /// Texts in memory that the caller frees, and the dialog's size in pixels. E_POINTER, E_OUTOFMEMORY.
    HRESULT STDMETHODCALLTYPE GetPageInfo(PROPPAGEINFO* info) override;

    /// Takes the first object that has ICVXSettings, instead of the one before; none when `count` is 0. E_POINTER for a
    /// null array; null elements are passed over.
    HRESULT STDMETHODCALLTYPE SetObjects(ULONG count, IUnknown** newObjects) override;

    /// Show and Move give E_UNEXPECTED without a dialog, Move E_POINTER for null.
    HRESULT STDMETHODCALLTYPE Show(UINT how) override;
    HRESULT STDMETHODCALLTYPE Move(LPCRECT rect) override;

    /// S_OK or S_FALSE.
    HRESULT STDMETHODCALLTYPE IsPageDirty() override;

    /// Stores the choices and hands them to the object if there is one, with a message when that does not work at once.
    /// E_UNEXPECTED without a dialog.
    HRESULT STDMETHODCALLTYPE Apply() override;
    HRESULT STDMETHODCALLTYPE Help(LPCOLESTR helpFolder) override;

    /// S_OK when the dialog took the message, else S_FALSE; E_POINTER.
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override;

protected:
    /// place  where it reads and writes; has to outlive the page
    explicit CVXPropertyPage(const SettingsPlace& place) : place(place) {}

private:
    static INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    bool OnCommand(WORD control, WORD notification);
    bool OnStyleChanging(WPARAM which, STYLESTRUCT& styles) const;
    void OnSlider();
    void OnDestroyed();

    void InitDialog();
    void ShowScaleFactor();
    PageChoices ObjectsChoices() const;
    void RefreshTitle(bool force);
    void MarkDirty();

    SliderPositions Positions();
    PageChoices ChosenNow();
    bool IsChecked(int control) const;
    double ShownScaleFactor() const;
    void HandToObject(PageChoices chosen, double scaleFactor) const;
    void TellWhenItWorks(ICVXSettings& object, const PageChoices& chosen) const;

    double StoredScaleFactor() const;
    PageChoices StoredChoices() const;
    void Store(const PageChoices& chosen, const TouchedChoices& what) const;

    const SettingsPlace& place;
    ComPointer<IPropertyPageSite> site;
    ComPointer<ICVXSettings> settings;  // the running object's
    HWND window = nullptr;
    SliderControl edgeSlider;
    SliderControl modeSlider;
    PageChoices choices;  // as read when the page opened, or as applied last
    PageChoices shown;    // the same as far as the controls can say it
    TouchedChoices touched;
    int lastShownActive = 0;
    bool dirty = false;
};

/// Makes the page of a kind of object, plain or as a part of `outer`. Results as of HandOver in com_object.h.
HRESULT CreatePlayersPage(IUnknown* outer, REFIID iid, void** out);
HRESULT CreateEffectsPage(IUnknown* outer, REFIID iid, void** out);

}  // namespace clarivex
