// Makes foreign text safe to show.
#include "host/errors.h"

namespace clarivex {

std::string Printable(std::string_view text) {
    constexpr size_t longest = 40;
    std::string shown;
    for (const char letter : text.substr(0, longest)) shown += letter >= ' ' && letter <= '~' ? letter : '?';
    return text.size() > longest ? shown + "..." : shown;
}

}  // namespace clarivex
