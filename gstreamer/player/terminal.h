// The terminal as a keyboard.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "gstreamer/player/handles.h"
#include "play/keys.h"

namespace clarivex {

/// The keys that a terminal sends such bytes for; what is none of the player's is left out.
std::vector<Key> KeysOf(std::string_view bytes);

/// Puts the terminal back as it was before its keys were read, at once and for good. For any thread, and for handlers of signals.
void RestoreTerminal();

/// Reads keys one by one while it lives. Standard input that is no terminal, or another's for the moment, is left alone.
/// However the process ends, the terminal is put back as it was, but for a kill that cannot be seen.
class TerminalKeys {
public:
    /// keyPressed  is called from the main loop
    explicit TerminalKeys(std::function<void(Key)> keyPressed);
    ~TerminalKeys();
    TerminalKeys(const TerminalKeys&) = delete;
    TerminalKeys& operator=(const TerminalKeys&) = delete;

private:
    bool ReadKeys();

    std::function<void(Key)> tell;
    LoopSource source;
};

}  // namespace clarivex
