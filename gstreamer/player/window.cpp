#include "gstreamer/player/window.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <glib-unix.h>

#include <cstdio>
#include <cstdlib>

#include "gstreamer/player/play_error.h"
#include "gstreamer/player/terminal.h"

namespace clarivex {

namespace {

/// Requests that come too late, such as to a window that is going, are no reason to end.
int IgnoreError(Display* /*display*/, XErrorEvent* /*error*/) { return 0; }

/// Xlib cannot go on behind this, on none of the connections; nor can the threads that draw be ended in order.
int EndWithDisplay(Display* /*display*/) {
    RestoreTerminal();
    std::fputs("\nclarivex: the display has gone\n", stderr);
    std::_Exit(EXIT_FAILURE);
}

Display* OpenDisplay() {
    XInitThreads();  // sinks draw from threads of their own
    XSetErrorHandler(IgnoreError);
    XSetIOErrorHandler(EndWithDisplay);
    Display* display = XOpenDisplay(nullptr);
    if (display != nullptr) return display;
    const char* name = std::getenv("DISPLAY");
    if (name == nullptr || *name == '\0')
        throw PlayError("there is no display to play on: DISPLAY is not set; start it in a desktop session");
    throw PlayError(std::string("the display ") + name + " cannot be opened; DISPLAY may name another session's");
}

/// 0 for what types nothing and is no key of the player's.
Key KeyOf(XKeyEvent& event) {
    char typed = 0;
    KeySym symbol = NoSymbol;
    const int length = XLookupString(&event, &typed, 1, &symbol, nullptr);
    switch (symbol) {
        case XK_Left: return leftKey;
        case XK_Right: return rightKey;
        case XK_Up: return upKey;
        case XK_Down: return downKey;
        default: return length == 1 ? static_cast<unsigned char>(typed) : 0;
    }
}

/// An image of the pointer that has no pixel.
Cursor MakeNoPointer(Display* display, ::Window window) {
    const char nothing[1] = {};
    XColor black{};
    const Pixmap pixmap = XCreateBitmapFromData(display, window, nothing, 1, 1);
    const Cursor cursor = XCreatePixmapCursor(display, pixmap, pixmap, &black, &black, 0, 0);
    XFreePixmap(display, pixmap);
    return cursor;
}

bool HasManager(Display* display) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* value = nullptr;
    const Atom check = XInternAtom(display, "_NET_SUPPORTING_WM_CHECK", False);
    const int result = XGetWindowProperty(display, DefaultRootWindow(display), check, 0, 1, False, XA_WINDOW, &type,
                                          &format, &count, &left, &value);
    if (value != nullptr) XFree(value);
    return result == Success && count == 1;
}

}  // namespace

struct Window::Atoms {
    explicit Atoms(Display* display)
        : protocols(XInternAtom(display, "WM_PROTOCOLS", False)),
          deleteWindow(XInternAtom(display, "WM_DELETE_WINDOW", False)),
          state(XInternAtom(display, "_NET_WM_STATE", False)),
          fullScreen(XInternAtom(display, "_NET_WM_STATE_FULLSCREEN", False)),
          name(XInternAtom(display, "_NET_WM_NAME", False)),
          utf8(XInternAtom(display, "UTF8_STRING", False)),
          hasManager(HasManager(display)) {}

    Atom protocols, deleteWindow, state, fullScreen, name, utf8;
    bool hasManager;
};

void Window::DisplayCloser::operator()(Display* display) const { XCloseDisplay(display); }

Window::Window(WindowEvents told)
    : events(std::move(told)), display(OpenDisplay()), atoms(std::make_unique<Atoms>(display.get())) {
    Make();
    const auto handle = [](gint, GIOCondition, gpointer window) -> gboolean {
        static_cast<Window*>(window)->HandleEvents();
        return G_SOURCE_CONTINUE;
    };
    source.Take(g_unix_fd_add(ConnectionNumber(display.get()), G_IO_IN, handle, this));
}

Window::~Window() = default;  // closing the connection takes the window along

void Window::Make() {
    Display* const to = display.get();
    const auto black = BlackPixel(to, DefaultScreen(to));
    id = XCreateSimpleWindow(to, DefaultRootWindow(to), 0, 0, static_cast<unsigned>(size.width),
                             static_cast<unsigned>(size.height), 0, black, black);
    XSelectInput(to, id, KeyPressMask | ButtonPressMask | Button1MotionMask | ExposureMask | StructureNotifyMask);
    XSetWMProtocols(to, id, &atoms->deleteWindow, 1);
    char name[] = "clarivex";
    char className[] = "Clarivex";
    XClassHint classHint{name, className};
    XSetClassHint(to, id, &classHint);
    noPointer = MakeNoPointer(to, id);
    XFlush(to);
}

void Window::SetTitle(const std::string& title) {
    XStoreName(display.get(), id, title.c_str());
    XChangeProperty(display.get(), id, atoms->name, atoms->utf8, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(title.data()), static_cast<int>(title.size()));
}

Extent Window::MakeFor(const Extent& picture) {
    Display* const to = display.get();
    if (isShown && isFull) return size;
    const Extent screen{DisplayWidth(to, DefaultScreen(to)), DisplayHeight(to, DefaultScreen(to))};
    const bool fits = picture.width <= screen.width && picture.height <= screen.height;
    size = fits ? picture : FitInto(picture, screen);
    XResizeWindow(to, id, static_cast<unsigned>(size.width), static_cast<unsigned>(size.height));
    XSync(to, False);  // sinks ask for it on connections of their own
    return size;
}

void Window::Show(const std::string& title) {
    Display* const to = display.get();
    SetTitle(title);
    if (isShown) return;
    if (isFull && atoms->hasManager)
        XChangeProperty(to, id, atoms->state, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(&atoms->fullScreen), 1);
    XMapRaised(to, id);
    isShown = true;
    if (isFull && !atoms->hasManager) Cover(true);
    XFlush(to);
}

void Window::SetFullScreen(bool on) {
    if (on == isFull) return;
    isFull = on;
    HidePointer(on);
    if (isShown && atoms->hasManager) AskManager(on);
    if (isShown && !atoms->hasManager) Cover(on);
    XFlush(display.get());
}

void Window::AskManager(bool on) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = id;
    event.xclient.message_type = atoms->state;
    event.xclient.format = 32;
    event.xclient.data.l[0] = on ? 1 : 0;
    event.xclient.data.l[1] = static_cast<long>(atoms->fullScreen);
    event.xclient.data.l[3] = 1;  // an application asks, not a pager
    XSendEvent(display.get(), DefaultRootWindow(display.get()), False,
               SubstructureNotifyMask | SubstructureRedirectMask, &event);
}

void Window::Cover(bool on) {
    Display* const to = display.get();
    if (on) sizeBefore = size;
    const Extent wanted =
        on ? Extent{DisplayWidth(to, DefaultScreen(to)), DisplayHeight(to, DefaultScreen(to))} : sizeBefore;
    XMoveResizeWindow(to, id, 0, 0, static_cast<unsigned>(wanted.width), static_cast<unsigned>(wanted.height));
}

void Window::HidePointer(bool hidden) {
    if (hidden)
        XDefineCursor(display.get(), id, noPointer);
    else
        XUndefineCursor(display.get(), id);
}

void Window::HandleEvents() {
    while (XPending(display.get()) > 0) {
        XEvent event;
        XNextEvent(display.get(), &event);
        Handle(event);
    }
}

void Window::Handle(XEvent& event) {
    switch (event.type) {
        case KeyPress:
            if (const Key key = KeyOf(event.xkey)) events.keyPressed(key);
            break;
        case ButtonPress:
            if (event.xbutton.button == Button1) events.dragged(event.xbutton.x);
            break;
        case MotionNotify: events.dragged(event.xmotion.x); break;
        case ConfigureNotify:
            size = {event.xconfigure.width, event.xconfigure.height};
            events.exposed();
            break;
        case Expose:
            if (event.xexpose.count == 0) events.exposed();
            break;
        case MapNotify:
            if (!atoms->hasManager) XSetInputFocus(display.get(), id, RevertToParent, CurrentTime);
            break;
        case DestroyNotify: events.closed(); break;
        case ClientMessage:
            if (static_cast<Atom>(event.xclient.data.l[0]) == atoms->deleteWindow) events.closed();
            break;
        default: break;
    }
}

}  // namespace clarivex
