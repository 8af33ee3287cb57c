#include "gstreamer/player/terminal.h"

#include <glib-unix.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace clarivex {

namespace {

termios modeBefore;
std::atomic<bool> isChanged = false;

void RestoreAndRaise(int signal) {
    RestoreTerminal();
    std::raise(signal);
}

/// Signals that end the process without a word to the main loop.
void RestoreModeOnSignals() {
    for (const int signal : {SIGHUP, SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
        struct sigaction action {};
        action.sa_handler = RestoreAndRaise;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        sigaction(signal, &action, nullptr);
    }
}

/// Has keys come as they are pressed, and unseen. Keys that send signals keep doing so.
bool ChangeMode() {
    if (isatty(STDIN_FILENO) == 0 || tcgetpgrp(STDIN_FILENO) != getpgrp()) return false;
    if (tcgetattr(STDIN_FILENO, &modeBefore) != 0) return false;
    termios mode = modeBefore;
    mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    mode.c_cc[VMIN] = 1;
    mode.c_cc[VTIME] = 0;
    std::atexit(RestoreTerminal);
    RestoreModeOnSignals();
    isChanged = true;
    return tcsetattr(STDIN_FILENO, TCSANOW, &mode) == 0;
}

/// The key of a sequence "ESC [ A" or "ESC O A", 0 for another.
Key ArrowOf(char last) {
    switch (last) {
        case 'A': return upKey;
        case 'B': return downKey;
        case 'C': return rightKey;
        case 'D': return leftKey;
        default: return 0;
    }
}

bool IsLast(char letter) { return letter >= '@' && letter <= '~'; }

/// Takes one key off the front; 0 for what is none. An escape sequence is one key, whatever it says.
Key TakeKey(std::string_view& bytes) {
    const auto first = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    if (first != escapeKey || bytes.empty() || (bytes.front() != '[' && bytes.front() != 'O')) return first;
    bytes.remove_prefix(1);
    while (!bytes.empty() && !IsLast(bytes.front())) bytes.remove_prefix(1);
    if (bytes.empty()) return 0;
    const char last = bytes.front();
    bytes.remove_prefix(1);
    return ArrowOf(last);
}

}  // namespace

void RestoreTerminal() {
    if (isChanged.exchange(false)) tcsetattr(STDIN_FILENO, TCSANOW, &modeBefore);
}

std::vector<Key> KeysOf(std::string_view bytes) {
    std::vector<Key> keys;
    while (!bytes.empty()) {
        const Key key = TakeKey(bytes);
        if (ControlOf(key)) keys.push_back(key);
    }
    return keys;
}

TerminalKeys::TerminalKeys(std::function<void(Key)> keyPressed) : tell(std::move(keyPressed)) {
    if (!ChangeMode()) return;
    const auto handle = [](gint, GIOCondition, gpointer keys) -> gboolean {
        return static_cast<TerminalKeys*>(keys)->ReadKeys() ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
    };
    source.Take(g_unix_fd_add(STDIN_FILENO, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), handle, this));
}

TerminalKeys::~TerminalKeys() { RestoreTerminal(); }

/// False when no more will come.
bool TerminalKeys::ReadKeys() {
    char bytes[256];
    const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
    if (count > 0)
        for (const Key key : KeysOf({bytes, static_cast<size_t>(count)})) tell(key);
    else
        source.Forget();
    return count > 0;
}

}  // namespace clarivex
