// SliderControl: one track bar of a dialog, and the text beside it that follows the slider.
#pragma once

#include <cstdint>

#include "platform/win32.h"

namespace clarivex {

/// Watches a track bar through a window procedure of its own until the track bar ends. Must live longer than that.
/// Everything belongs to the dialog's thread, but for Position().
class SliderControl {
public:
    SliderControl() = default;
    SliderControl(const SliderControl&) = delete;
    SliderControl& operator=(const SliderControl&) = delete;

    /// Takes over a track bar, with positions 0 … `lastPosition`, and puts it at `position` or the end next to that. A
    /// dialog without this control leaves the slider at rest at 0. A track bar that cannot be watched, because the
    /// system is short of window properties, stands and answers like any other; only the companion stays as it was.
    ///
    /// companion  control of the dialog that shows the position as a number from 0.00 to 1.00 while the user moves the
    ///            slider; 0 for none
    void Attach(HWND dialog, int controlId, int32_t lastPosition, int32_t position, int companion = 0);

    /// Where the slider stands. Other threads get what the attaching thread saw last: asking the track bar would make them
    /// wait for its thread.
    int32_t Position();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void NoteButton(UINT message);
    bool Moves(UINT message) const;
    void UpdateCompanion();
    WNDPROC LetGo();

    static constexpr double minValue = 0.0;
    static constexpr double maxValue = 1.0;

    HWND trackBar = nullptr;
    HWND parent = nullptr;
    WNDPROC oldProcedure = nullptr;
    DWORD thread = 0;
    int companionId = 0;
    int32_t ticks = 1;
    int32_t seenPosition = 0;
    bool dragging = false;
};

}  // namespace clarivex
