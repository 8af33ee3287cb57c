// Windows of a host for tests: a frame that pages and controls stand in, and someone who answers message boxes.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

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
    HostWindow(const char* title, int width, int height)
        : window(CreateWindowExA(WS_EX_TOOLWINDOW, "STATIC", title, WS_POPUP | WS_CLIPCHILDREN, 0, 0, width, height,
                                 nullptr, nullptr, nullptr, nullptr)) {
        ShowWindow(window, SW_SHOWNA);
    }
    ~HostWindow() { DestroyWindow(window); }
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    HWND Handle() const { return window; }
    HWND Child() const { return GetWindow(window, GW_CHILD); }

    /// Lets the windows of this thread draw and answer what waits for them.
    static void HandleMessages() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }

private:
    const HWND window;
};

/// While it lives, a thread of its own closes each message box of this process with the caption, and keeps its text.
class MessageBoxCloser {
public:
    explicit MessageBoxCloser(const char* boxCaption) : caption(boxCaption), watcher([this] { Watch(); }) {}
    ~MessageBoxCloser() { Finish(); }

    /// Ends the watch and gives the texts of the boxes seen, in order.
    std::vector<std::string> Finish() {
        finished = true;
        if (watcher.joinable()) watcher.join();
        return texts;
    }

private:
    void Watch() {
        constexpr DWORD pollMilliseconds = 5;
        while (!finished) {
            const HWND box = FindWindowA("#32770", caption);
            if (box != nullptr) Close(box);
            Sleep(pollMilliseconds);
        }
    }
    void Close(HWND box) {
        constexpr int textId = 0xFFFF;
        const HWND text = GetDlgItem(box, textId);
        if (text == nullptr || IsWindowVisible(box) == FALSE) return;  // not finished yet
        texts.push_back(TextOf(text));
        SendMessageA(box, WM_COMMAND, IDOK, 0);
    }

    const char* caption;
    std::atomic<bool> finished = false;
    std::vector<std::string> texts;
    std::thread watcher;
};

}  // namespace clarivex
