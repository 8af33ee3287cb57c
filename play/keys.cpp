#include "play/keys.h"

#include <array>

namespace clarivex {

namespace {

std::string NameOf(Key key) {
    switch (key) {
        case escapeKey: return "Esc";
        case spaceKey: return "Space";
        case leftKey: return "Left";
        case rightKey: return "Right";
        case upKey: return "Up";
        case downKey: return "Down";
        default: return {static_cast<char>(key)};
    }
}

}  // namespace

std::span<const KeyRow> KeyTable() {
    using enum Control;
    static const std::array<KeyRow, 16> rows = {{
        {{{spaceKey, pause}, {'p', pause}}, "pause, and go on"},
        {{{'.', nextFrame}}, "the next frame, paused"},
        {{{leftKey, backward}, {rightKey, forward}}, "5 seconds back or on"},
        {{{downKey, farBackward}, {upKey, farForward}}, "a minute back or on"},
        {{{'e', enhance}}, "enhancement on and off"},
        {{{'s', split}}, "split view on and off: plain on the left, enhanced on the right; a mouse moves the line"},
        {{{'[', splitLeft}, {']', splitRight}}, "the line of the split view to the left or right"},
        {{{'-', softer}, {'+', sharper}, {'=', sharper}}, "less or more sharpness"},
        {{{'l', lighting}}, "automatic lighting control on and off"},
        {{{'n', noise}}, "noise on and off"},
        {{{'c', caption}}, "the opening caption on and off"},
        {{{'9', quieter}, {'0', louder}}, "less or more volume"},
        {{{'m', mute}}, "sound off and on"},
        {{{'f', fullScreen}, {escapeKey, leaveFullScreen}}, "full screen on and off, and off"},
        {{{'h', help}, {'?', help}}, "show these keys in the terminal"},
        {{{'q', quit}}, "end"},
    }};
    return rows;
}

std::optional<Control> ControlOf(Key key) {
    for (const KeyRow& row : KeyTable())
        for (const auto& [one, control] : row.keys)
            if (one == key) return control;
    return std::nullopt;
}

std::string NamesOf(const KeyRow& row) {
    std::string names;
    for (const auto& [key, control] : row.keys) names += (names.empty() ? "" : " ") + NameOf(key);
    return names;
}

}  // namespace clarivex
