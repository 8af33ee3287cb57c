// Makes foreign text safe to show.
#include "host/errors.h"

namespace clarivex {

std::string Printable(std::string_view text) {
    constexpr size_t longest = 40;
    if (text.empty()) return "(empty)";
    std::string shown;
    for (const char letter : text.substr(0, longest)) shown += letter >= ' ' && letter <= '~' ? letter : '?';
    return text.size() > longest ? shown + "..." : shown;
}

std::string PrintablePath(std::string_view path) {
    if (path.empty()) return "(empty)";
    std::string shown;
    for (const char letter : path) shown += (letter >= 0 && letter < ' ') || letter == '\x7f' ? '?' : letter;
    return shown;
}

}  // namespace clarivex
