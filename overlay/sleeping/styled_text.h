// Text with tags and alignment: what text_layout.h can do beyond the plug-in's caption, which needs neither.
#pragma once

#include <cstdint>

#include "overlay/font_engine.h"
#include "overlay/point_list.h"
#include "runtime/short_string.h"

namespace clarivex {

/// A text and how it is set.
struct StyledText {
    static constexpr uint32_t alignRight = 1;
    static constexpr uint32_t alignCentre = 2;  ///< wins over alignRight

    ShortString text;
    uint32_t align = 0;   ///< left without a bit set; each line on its own
    bool markup = false;  ///< <i>, </i>, <b> and </b> switch the style, other tags are left out
};

/// As LayoutText. Lines aligned to the right end at x = 0, centred ones have their middle there. A tag without its end
/// takes the rest of the text.
void LayoutStyledText(const StyledText& content, FontEngine& fonts, OutlineHandle& outline);

}  // namespace clarivex
