// Stands in front of a track bar's own window procedure. The way from the window to its SliderControl is a window
// property, so the control's user data stays what its own procedure expects.
#include "shell/windows/slider_control.h"

#include <commctrl.h>

#include <utility>

#include "runtime/short_string.h"

namespace clarivex {
namespace {

constexpr char ownerProperty[] = "Clarivex.SliderControl";

SliderControl* OwnerOf(HWND window) { return static_cast<SliderControl*>(GetPropA(window, ownerProperty)); }

}  // namespace

void SliderControl::Attach(HWND dialog, int controlId, int32_t lastPosition, int32_t position, int companion) {
    trackBar = GetDlgItem(dialog, controlId);
    parent = dialog;
    thread = GetCurrentThreadId();
    companionId = companion;
    ticks = lastPosition;
    dragging = false;
    seenPosition = 0;
    if (trackBar == nullptr) return;
    SendMessageA(trackBar, TBM_SETRANGE, TRUE, MAKELPARAM(0, ticks));
    SendMessageA(trackBar, TBM_SETPOS, TRUE, position);
    Position();
    if (SetPropA(trackBar, ownerProperty, this) != FALSE) {
        const LONG_PTR procedure = reinterpret_cast<LONG_PTR>(&Procedure);
        oldProcedure = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(trackBar, GWLP_WNDPROC, procedure));
    }
}

int32_t SliderControl::Position() {
    if (GetCurrentThreadId() == thread && IsWindow(trackBar) != FALSE)
        seenPosition = static_cast<int32_t>(SendMessageA(trackBar, TBM_GETPOS, 0, 0));
    return seenPosition;
}

LRESULT CALLBACK SliderControl::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    SliderControl* slider = OwnerOf(window);
    if (slider == nullptr) return DefWindowProcA(window, message, wParam, lParam);
    if (message == WM_NCDESTROY) return CallWindowProcA(slider->LetGo(), window, message, wParam, lParam);
    slider->NoteButton(message);
    const LRESULT result = CallWindowProcA(slider->oldProcedure, window, message, wParam, lParam);
    // Whoever heard of the move may have closed the dialog.
    if (OwnerOf(window) == slider && slider->Moves(message)) slider->UpdateCompanion();
    return result;
}

void SliderControl::NoteButton(UINT message) {
    if (message == WM_LBUTTONDOWN)
        dragging = true;
    else if (message == WM_LBUTTONUP)
        dragging = false;
}

bool SliderControl::Moves(UINT message) const {
    return message == WM_CHAR || message == WM_MOUSEWHEEL || (message == WM_MOUSEMOVE && dragging);
}

void SliderControl::UpdateCompanion() {
    const int32_t position = Position();
    if (companionId == 0) return;
    ShortString text;
    text.Format("%.2f", minValue + (maxValue - minValue) * position / ticks);
    SetDlgItemTextA(parent, companionId, text.Text());
}

WNDPROC SliderControl::LetGo() {
    RemovePropA(trackBar, ownerProperty);
    SetWindowLongPtrA(trackBar, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(oldProcedure));
    trackBar = nullptr;
    return std::exchange(oldProcedure, nullptr);
}

}  // namespace clarivex
