// A host's window for tests of pages and controls.
#pragma once

#include <string>

#include "platform/win32.h"

namespace clarivex {

inline std::string TextOf(HWND window) {
    char text[512] = {};
    GetWindowTextA(window, text, sizeof text);
    return text;
}

/// An empty window on the screen.
class HostWindow {
public:
    HostWindow(int width, int height)
        : window(CreateWindowExA(WS_EX_TOOLWINDOW, "STATIC", "Host", WS_POPUP | WS_CLIPCHILDREN, 0, 0, width, height,
                                 nullptr, nullptr, nullptr, nullptr)) {
        ShowWindow(window, SW_SHOWNA);
    }
    ~HostWindow() { DestroyWindow(window); }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    HWND Handle() const { return window; }
    HWND Child() const { return GetWindow(window, GW_CHILD); }

private:
    const HWND window;
};

}  // namespace clarivex
