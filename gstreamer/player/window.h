// The player's window, through Xlib. Sessions of Wayland show it through their X server.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "gstreamer/player/extent.h"
#include "gstreamer/player/handles.h"
#include "play/keys.h"

// What Xlib calls them; its header brings macros along, and so stays out of ours.
struct _XDisplay;  // NOLINT(bugprone-reserved-identifier)
union _XEvent;     // NOLINT(bugprone-reserved-identifier)

namespace clarivex {

/// What a window tells, from the main loop.
struct WindowEvents {
    std::function<void(Key)> keyPressed;
    std::function<void(int column)> dragged;  ///< the left mouse button is down there
    std::function<void()> exposed;            ///< shown, uncovered or of another size
    std::function<void()> closed;
};

class Window {
public:
    /// Connects to the display; nothing is shown yet. Throws PlayError where there is none.
    explicit Window(WindowEvents told);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// What a video sink draws into.
    unsigned long Id() const { return id; }

    /// As it was last told.
    Extent Size() const { return size; }

    /// Makes the window as large as the picture or, where that is larger than the screen, as large as fits there; where it
    /// covers the screen, it stays. Returns its size.
    Extent MakeFor(const Extent& picture);

    /// A second call changes the title.
    void Show(const std::string& title);

    /// Tells all that has come, to be called now and then: Xlib reads events while it writes, too, and the main loop does not see
    /// those that are read.
    void HandleEvents();

    /// Through the window manager; without one the window covers the screen. May be called before it is shown.
    void SetFullScreen(bool on);
    bool IsFullScreen() const { return isFull; }

private:
    struct DisplayCloser {
        void operator()(_XDisplay* display) const;
    };
    struct Atoms;

    void Make();
    void SetTitle(const std::string& title);
    void Handle(_XEvent& event);
    void AskManager(bool on);
    void Cover(bool on);
    void HidePointer(bool hidden);

    WindowEvents events;
    std::unique_ptr<_XDisplay, DisplayCloser> display;
    std::unique_ptr<Atoms> atoms;
    unsigned long id = 0;
    unsigned long noPointer = 0;
    Extent size{640, 360};
    Extent sizeBefore;  // covering the screen
    bool isShown = false;
    bool isFull = false;
    LoopSource source;
};

}  // namespace clarivex
