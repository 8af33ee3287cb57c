// Lines of text as one outline, in units that do not depend on the picture.
#pragma once

#include <cstdint>

#include "overlay/font_engine.h"
#include "overlay/point_list.h"
#include "runtime/short_string.h"

namespace clarivex {

/// A text and how it is set, or a filled sector in its place.
struct TextContent {
    static constexpr uint32_t alignRight = 1;
    static constexpr uint32_t alignCentre = 2;  ///< wins over alignRight

    ShortString text;     ///< bytes; 10 begins a new line, 13 is ignored
    uint32_t align = 0;   ///< left without a bit set
    bool markup = false;  ///< <i>, </i>, <b> and </b> switch the style, other tags are left out

    bool arcMode = false;   ///< a filled sector around the origin, clockwise from straight up, instead of text
    int32_t arcRadius = 0;  ///< pixels of a font of cell height 256
    int32_t arcTurn = 0;    ///< 65536 is a full circle
};

/// Lays the content out from (0, 0): the baseline of the first line, lines an em apart. `outline` then holds a list with
/// what the fonts gave, which may be nothing; a list that others hold too stays as it is and is replaced.
void LayoutText(const TextContent& content, FontEngine& fonts, OutlineHandle& outline);

}  // namespace clarivex
