// The keys of the player: one table for its window, its terminal, and the help.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace clarivex {

/// A key by the character that it types, or one that types none.
using Key = uint32_t;
enum NamedKey : Key { escapeKey = 27, spaceKey = 32, leftKey = 0x110000, rightKey, upKey, downKey };

/// What a key asks for.
enum class Control {
    pause,
    nextFrame,
    backward,
    forward,
    farBackward,
    farForward,
    enhance,
    split,
    splitLeft,
    splitRight,
    softer,
    sharper,
    lighting,
    noise,
    caption,
    mute,
    quieter,
    louder,
    fullScreen,
    leaveFullScreen,
    help,
    quit,
};

/// One line of the help: keys, and what each of them does in turn.
struct KeyRow {
    std::vector<std::pair<Key, Control>> keys;
    std::string_view meaning;  ///< a line without a full stop
};

std::span<const KeyRow> KeyTable();

/// None for a key that does nothing.
std::optional<Control> ControlOf(Key key);

/// The names of a row's keys: "Left Right".
std::string NamesOf(const KeyRow& row);

}  // namespace clarivex
