// Windows of a host for tests: a frame that pages and controls stand in, and someone who answers message boxes.
#pragma once

#include <atomic>
#include <functional>
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

inline std::string ClassOf(HWND window) {
    char name[128] = {};
    GetClassNameA(window, name, sizeof name);
    return name;
}

/// An empty window on the screen. Messages WM_APP make it call `onRequest` on its own thread.
class HostWindow {
public:
    HostWindow(const char* title, int width, int height) {
        WNDCLASSA description = {};
        description.lpfnWndProc = &Procedure;
        description.hInstance = GetModuleHandleA(nullptr);
        description.lpszClassName = className;
        description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
        RegisterClassA(&description);
        window = CreateWindowExA(WS_EX_TOOLWINDOW, className, title, style, 0, 0, width, height, nullptr, nullptr,
                                 description.hInstance, nullptr);
        SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ShowWindow(window, SW_SHOWNA);
    }
    ~HostWindow() {
        DestroyWindow(window);
        UnregisterClassA(className, GetModuleHandleA(nullptr));
    }
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

    std::function<void()> onRequest;

private:
    static constexpr DWORD style = WS_POPUP | WS_CLIPCHILDREN;
    static constexpr char className[] = "Clarivex test host";

    static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* host = reinterpret_cast<HostWindow*>(GetWindowLongPtrA(handle, GWLP_USERDATA));
        if (message == WM_APP && host != nullptr && host->onRequest) {
            host->onRequest();
            return 0;
        }
        return DefWindowProcA(handle, message, wParam, lParam);
    }

    HWND window = nullptr;
};

/// While it lives, a thread of its own closes each message box of this process with the caption, and keeps its text.
class MessageBoxCloser {
public:
    /// beforeClosing  called on the closing thread while the box stands
    explicit MessageBoxCloser(const char* boxCaption, std::function<void()> beforeClosing = {})
        : caption(boxCaption), meanwhile(std::move(beforeClosing)), watcher([this] { Watch(); }) {}
    ~MessageBoxCloser() { Finish(); }
    MessageBoxCloser(const MessageBoxCloser&) = delete;
    MessageBoxCloser& operator=(const MessageBoxCloser&) = delete;

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
        if (meanwhile) meanwhile();
        SendMessageA(box, WM_COMMAND, IDOK, 0);
    }

    const char* caption;
    const std::function<void()> meanwhile;
    std::atomic<bool> finished = false;
    std::vector<std::string> texts;
    std::thread watcher;
};

}  // namespace clarivex
